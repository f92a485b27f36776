// The tree as docs/architecture.md shows it, compared with the folders on disk.
#include "tests/architecture/tree_page.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <regex>
#include <set>
#include <string_view>

namespace architecture {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 3> kFoldersWithRooms{"platform", "vdm_db", "host"};

/// One folder or room of the page.
struct TreeLine {
  std::string folder;  ///< from the root of the tree
  std::string text;
};

std::vector<std::string> firstCodeBlock(const fs::path& page) {
  std::vector<std::string> lines;
  std::ifstream in(page);
  bool inBlock = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("```")) {
      if (inBlock) break;
      inBlock = true;
    } else if (inBlock) {
      lines.push_back(line);
    }
  }
  return lines;
}

/// A line of several folders without a text, such as "examples/  tests/", names each of them.
std::vector<TreeLine> readTree(const fs::path& page) {
  static const std::regex kRoom(R"(  (\w+)/\s*(.*))");
  static const std::regex kFolder(R"((\w+)/\s+([^/]*))");
  static const std::regex kFolderName(R"((\w+)/)");
  std::vector<TreeLine> tree;
  std::string folder;
  std::smatch found;
  for (const std::string& line : firstCodeBlock(page)) {
    if (std::regex_match(line, found, kRoom)) {
      tree.push_back({folder + "/" + found[1].str(), found[2].str()});
    } else if (std::regex_match(line, found, kFolder)) {
      folder = found[1].str();
      tree.push_back({folder, found[2].str()});
    } else {
      for (std::sregex_iterator at(line.begin(), line.end(), kFolderName), end; at != end; ++at) {
        tree.push_back({(*at)[1].str(), "one of several"});
      }
    }
  }
  return tree;
}

bool holdsCode(const fs::path& room) {
  return std::ranges::any_of(fs::directory_iterator(room), [](const fs::directory_entry& entry) {
    return entry.path().extension() == ".h" || entry.path().extension() == ".cpp";
  });
}

std::set<std::string> roomsOnDisk(const fs::path& root) {
  std::set<std::string> rooms;
  for (const std::string_view folder : kFoldersWithRooms) {
    if (!fs::is_directory(root / folder)) continue;
    for (const fs::directory_entry& entry : fs::directory_iterator(root / folder)) {
      if (entry.is_directory() && holdsCode(entry.path())) {
        rooms.insert(entry.path().lexically_relative(root).generic_string());
      }
    }
  }
  return rooms;
}

}  // namespace

std::vector<std::string> checkTreePage(const fs::path& root, const fs::path& page) {
  const std::vector<TreeLine> tree = readTree(page);
  if (tree.empty()) return {page.filename().string() + " shows no tree"};
  std::vector<std::string> complaints;
  std::set<std::string> unnamed = roomsOnDisk(root);
  for (const TreeLine& line : tree) {
    unnamed.erase(line.folder);
    if (!fs::is_directory(root / line.folder)) {
      complaints.push_back(line.folder + " is shown, and there is no such folder");
    }
    if (line.text.empty()) complaints.push_back(line.folder + " is shown without a text");
  }
  for (const std::string& room : unnamed) complaints.push_back(room + " is not shown");
  return complaints;
}

}  // namespace architecture
