// Checks of paths before any work is done.
#pragma once

#include <cstdint>
#include <string>

namespace cli {

/// An output file as the command line names it.
struct OutputFile {
  std::string path;
  bool force = false;  ///< an existing file may be replaced
};

/// Raises CliError when the output cannot be written where it is named, when it exists and is not
/// to be replaced, or when it is the input itself (`input` may be empty).
void checkOutput(const OutputFile& output, const std::string& input);

/// Raises CliError when the file does not exist, is no file or cannot be read.
void checkInput(const std::string& path);

/// 0 when the file cannot be asked.
[[nodiscard]] std::uintmax_t fileSize(const std::string& path);

/// Both paths name one file.
[[nodiscard]] bool isSameFile(const std::string& a, const std::string& b);

}  // namespace cli
