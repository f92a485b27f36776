// Files that are written whole or not at all.
#pragma once

#include <string>

namespace rendering {

/// Writes the bytes beside the path and renames the file to it. The result is empty, or the reason
/// with the path; nothing is left behind then and an old file stays.
[[nodiscard]] std::string writeWholeFile(const std::string& path, const std::string& bytes);

}  // namespace rendering
