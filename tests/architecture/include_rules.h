// The architecture as data: which folder may include which, and a checker of a source tree.
#pragma once

#include <filesystem>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace architecture {

/// One folder of the tree and the folders whose headers its files may include. A folder may always
/// include itself; a file belongs to the longest folder that its path starts with.
struct FolderRule {
  std::string_view folder;
  std::vector<std::string_view> mayInclude;
};

/// Headers from outside the tree, told by the start or the end of their name in `<...>`, and the
/// folders that may see them. Standard library headers (no dot, no slash) need no rule.
struct ForeignRule {
  std::string_view library;
  std::vector<std::string_view> names;           ///< ends where they begin with a dot, else starts
  std::vector<std::string_view> allowedFolders;  ///< a folder stands for everything below it
};

std::span<const FolderRule> folderRules();
std::span<const ForeignRule> foreignRules();

/// Checks every source and header below `root` in the folders platform, vdm_utils, vdm_db and host:
///   1. a quoted include names an existing file, from the root of the tree;
///   2. it follows an arrow of `folderRules()`;
///   3. an umbrella header is included by hosts only;
///   4. an include in angle brackets is standard or allowed by `foreignRules()`;
///   5. a source includes the header of its own name first, a header starts with `#pragma once`.
/// Returns one line per violation, naming file, line and what is wrong, ordered by path.
std::vector<std::string> checkTree(const std::filesystem::path& root);

/// Folders that a rule names and that are not below `root`, in alphabetical order.
std::vector<std::string> missingFolders(const std::filesystem::path& root);

/// All headers (`.h`) below `root` in the same folders, as paths from the root.
std::set<std::string> headersOnDisk(const std::filesystem::path& root);

}  // namespace architecture
