// Files that are written whole or not at all.
#pragma once

#include <string>

namespace rendering {

/// Writes the bytes beside the path and renames the file to it (OdNewFile). The result is empty, or
/// the reason with the path; no other file is left then and an old one stays.
[[nodiscard]] std::string writeWholeFile(const std::string& path, const std::string& bytes);

}  // namespace rendering
