// Checks of paths before any work is done.
#include "host/cli/paths.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"

namespace cli {

namespace fs = std::filesystem;

OdNameClaim claimOutput(const OutputFile& output, std::initializer_list<std::string> inputs) {
  const fs::path path(output.path);
  std::error_code failure;
  fs::path folder = path.parent_path();
  if (folder.empty()) folder = ".";
  if (!fs::is_directory(folder, failure)) {
    throw CliError("output " + quote(output.path) + ": the folder " + quote(folder.string()) +
                   " does not exist");
  }
  if (fs::is_directory(path, failure)) {
    throw CliError("output " + quote(output.path) + " is a folder");
  }
  if (fs::exists(path, failure) && !fs::is_regular_file(path, failure)) {
    throw CliError("output " + quote(output.path) + " is not a regular file and is not replaced");
  }
  for (const std::string& input : inputs) {
    if (!isSameFile(input, output.path)) continue;
    throw CliError("output " + quote(output.path) + " is the input itself");
  }
  // Looked at once the name is ours: nothing gets in between from here to the writing.
  OdNameClaim claim(output.path);
  const int refused = claim.take();
  if (refused == EADDRINUSE) {
    throw CliError("output " + quote(output.path) + " is being written by another program");
  }
  if (fs::exists(path, failure) && !output.force) {
    throw CliError("output " + quote(output.path) + " exists, --force replaces it");
  }
  if (refused != 0) {
    throw CliError("output " + quote(output.path) +
                   " cannot be written: " + std::strerror(refused));
  }
  return claim;
}

void checkInput(const std::string& path) {
  std::error_code failure;
  const fs::file_status status = fs::status(path, failure);
  if (status.type() == fs::file_type::not_found) {
    throw CliError("file " + quote(path) + " was not found");
  }
  if (status.type() == fs::file_type::directory) {
    throw CliError("file " + quote(path) + " is a folder");
  }
  if (access(path.c_str(), R_OK) != 0) {
    throw CliError("file " + quote(path) + " cannot be read: " + std::strerror(errno));
  }
}

std::uintmax_t fileSize(const std::string& path) {
  std::error_code failure;
  const std::uintmax_t size = fs::file_size(path, failure);
  return failure ? 0 : size;
}

bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code failure;
  return fs::equivalent(a, b, failure) && !failure;
}

}  // namespace cli
