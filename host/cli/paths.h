// Checks of paths before any work is done.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "platform/base/new_file.h"

namespace cli {

/// An output file as the command line names it.
struct OutputFile {
  std::string path;
  bool force = false;  ///< an existing file may be replaced
};

/// Raises CliError when the output cannot be written where it is named, when it exists and is not
/// to be replaced, when it is an input itself, or when another command is about to write it. While
/// the result lives no other command writes there.
[[nodiscard]] OdNameClaim claimOutput(const OutputFile& output,
                                      std::initializer_list<std::string> inputs = {});

/// Raises CliError when the file does not exist, is no file or cannot be read.
void checkInput(const std::string& path);

/// 0 when the file cannot be asked.
[[nodiscard]] std::uintmax_t fileSize(const std::string& path);

/// Both paths name one file.
[[nodiscard]] bool isSameFile(const std::string& a, const std::string& b);

}  // namespace cli
