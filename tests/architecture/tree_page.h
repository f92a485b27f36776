// The tree as docs/architecture.md shows it, compared with the folders on disk.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace architecture {

/// Reads the first code block of the page: a line `name/ text` is a folder of the root, and a line
/// `  name/ text` below it is a room of that folder. Returns one line for each
///   1. room of platform, vdm_db and host that has sources or headers and no line in the block;
///   2. folder or room in the block that is not on disk;
///   3. line without a text.
/// A page that cannot be read, or has no code block, is one line, too.
std::vector<std::string> checkTreePage(const std::filesystem::path& root,
                                       const std::filesystem::path& page);

}  // namespace architecture
