// Reads the includes of a source tree and compares them with the table of allowed arrows.
#include "tests/architecture/include_rules.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <regex>

namespace architecture {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 4> kCheckedFolders{"platform", "vdm_utils", "vdm_db",
                                                          "host"};

/// Headers that gather a library for its users; nothing below the hosts includes them.
constexpr std::array<std::string_view, 2> kUmbrellas{"platform/platform.h", "vdm_db/vdm_db.h"};

constexpr std::string_view kBase = "platform/base", kExpressions = "platform/expressions",
                           kRx = "platform/rx", kGe = "platform/ge", kFiler = "platform/filer",
                           kDb = "platform/db", kEntities = "platform/entities",
                           kAssoc = "platform/assoc", kCloning = "platform/cloning",
                           kRuntime = "platform/runtime", kStorage = "platform/storage",
                           kGi = "platform/gi", kModeler = "platform/modeler",
                           kModelerWall = "platform/modeler_wall",
                           kModelerOcct = "platform/modeler_occt";

bool isBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool isUmbrella(std::string_view path) {
  return std::ranges::find(kUmbrellas, path) != kUmbrellas.end();
}

const FolderRule* ruleOf(std::string_view path) {
  const FolderRule* best = nullptr;
  for (const FolderRule& rule : folderRules()) {
    const bool isLonger = !best || rule.folder.size() > best->folder.size();
    if (isLonger && isBelow(path, rule.folder)) best = &rule;
  }
  return best;
}

/// One `#include` line.
struct Include {
  std::string name;
  bool quoted = false;
  std::size_t line = 0;
};

struct SourceFile {
  std::string path;  ///< from the root of the tree
  std::vector<Include> includes;
  bool hasPragmaOnce = false;
};

SourceFile readSource(const fs::path& root, const std::string& path) {
  static const std::regex kInclude(R"(\s*#\s*include\s*(["<])([^">]*)[">])");
  static const std::regex kPragmaOnce(R"(\s*#\s*pragma\s+once)");
  constexpr auto kFromStart = std::regex_constants::match_continuous;
  SourceFile file{path, {}, false};
  std::ifstream in(root / path);
  std::smatch found;
  std::string line;
  for (std::size_t number = 1; std::getline(in, line); ++number) {
    if (std::regex_search(line, found, kInclude, kFromStart)) {
      file.includes.push_back({found[2].str(), found[1] == "\"", number});
    }
    file.hasPragmaOnce |= std::regex_search(line, kPragmaOnce, kFromStart);
  }
  return file;
}

std::vector<std::string> filesOnDisk(const fs::path& root,
                                     std::initializer_list<std::string_view> extensions) {
  std::vector<std::string> paths;
  for (const std::string_view folder : kCheckedFolders) {
    if (!fs::exists(root / folder)) continue;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / folder)) {
      const std::string extension = entry.path().extension().string();
      if (entry.is_regular_file() && std::ranges::find(extensions, extension) != extensions.end()) {
        paths.push_back(entry.path().lexically_relative(root).generic_string());
      }
    }
  }
  std::ranges::sort(paths);
  return paths;
}

/// Collects the violations of one file.
class FileChecker {
 public:
  FileChecker(const fs::path& root, const SourceFile& file, std::vector<std::string>& violations)
      : m_root(root), m_file(file), m_violations(violations) {}

  void run() {
    checkShape();
    const FolderRule* rule = ruleOf(m_file.path);
    if (!rule && !isUmbrella(m_file.path)) {
      return report(1, "its folder has no row in the table of allowed arrows");
    }
    for (const Include& include : m_file.includes) {
      if (include.quoted) {
        checkQuoted(include, rule);
      } else {
        checkForeign(include);
      }
    }
  }

 private:
  void report(std::size_t line, const std::string& what) {
    m_violations.push_back(m_file.path + ":" + std::to_string(line) + ": " + what);
  }

  void checkShape() {
    const fs::path path(m_file.path);
    if (path.extension() == ".h") {
      if (!m_file.hasPragmaOnce) report(1, "has no #pragma once");
      return;
    }
    const std::string ownHeader = fs::path(path).replace_extension(".h").generic_string();
    if (path.extension() != ".cpp" || !fs::exists(m_root / ownHeader)) return;
    if (m_file.includes.empty() || m_file.includes.front().name != ownHeader) {
      report(1, "does not include its own header " + ownHeader + " first");
    }
  }

  void checkQuoted(const Include& include, const FolderRule* rule) {
    if (!fs::exists(m_root / include.name)) {
      return report(include.line,
                    "includes " + include.name + ", no file of that path from the root");
    }
    if (isUmbrella(m_file.path)) return;
    if (isUmbrella(include.name)) {
      if (!isBelow(m_file.path, "host")) {
        report(include.line, "includes the umbrella header " + include.name + ", only hosts may");
      }
      return;
    }
    const FolderRule* target = ruleOf(include.name);
    const bool allowed =
        target && (target == rule ||
                   std::ranges::find(rule->mayInclude, target->folder) != rule->mayInclude.end());
    if (!allowed) {
      report(include.line, std::string(rule->folder) + " may not include " + include.name);
    }
  }

  void checkForeign(const Include& include) {
    if (include.name.find_first_of("./") == std::string::npos) {
      return;  // standard library
    }
    for (const ForeignRule& rule : foreignRules()) {
      const auto isNamed = [&](std::string_view part) {
        return part.starts_with('.') ? include.name.ends_with(part)
                                     : include.name.starts_with(part);
      };
      if (std::ranges::none_of(rule.names, isNamed)) continue;
      const auto holdsFile = [&](std::string_view folder) { return isBelow(m_file.path, folder); };
      if (std::ranges::any_of(rule.allowedFolders, holdsFile)) return;
      return report(include.line,
                    "may not include <" + include.name + "> of " + std::string(rule.library));
    }
    report(include.line, "includes <" + include.name + ">, a library that no row allows");
  }

  const fs::path& m_root;
  const SourceFile& m_file;
  std::vector<std::string>& m_violations;
};

}  // namespace

namespace {

/// Appends a row for each room of a folder, in their order: a room may include what `below` lists
/// and the rooms before it.
void addRooms(std::vector<FolderRule>& table, std::vector<std::string_view> below,
              std::initializer_list<std::string_view> rooms) {
  for (const std::string_view room : rooms) {
    table.push_back({room, below});
    below.push_back(room);
  }
}

std::vector<FolderRule> makeFolderRules() {
  const std::vector<std::string_view> below{kBase, kRx, kGe, kFiler, kGi, kDb};
  std::vector<FolderRule> table{
      {kBase, {}},
      {kExpressions, {kBase}},
      {kRx, {kBase}},
      {kGe, {kBase}},
      {kFiler, {kBase, kRx, kGe}},
      {kGi, {kBase, kRx, kGe, kFiler}},
      {kDb, {kBase, kRx, kGe, kFiler, kGi}},
      {kEntities, below},
      {kCloning, below},
      {kAssoc, {kBase, kExpressions, kRx, kGe, kFiler, kGi, kDb}},
      {kRuntime, {kDb, kEntities, kCloning, kAssoc}},
      {kStorage, below},
      {kModeler, {kBase, kRx, kGe, kFiler, kGi, kDb, kEntities}},
      {kModelerWall, {kBase, kGe, kGi, kModeler}},
      {kModelerOcct, {kBase, kRx, kGe, kFiler, kGi, kDb, kModeler}},
      {"vdm_utils", below},
  };
  addRooms(table,
           {kBase, kRx, kGe, kFiler, kGi, kDb, kEntities, kCloning, kAssoc, kModeler, "vdm_utils"},
           {"vdm_db/common", "vdm_db/properties", "vdm_db/drawing_utils", "vdm_db/instances",
            "vdm_db/associations", "vdm_db/references", "vdm_db/model", "vdm_db/parameters",
            "vdm_db/constraints", "vdm_db/features", "vdm_db/concrete_features", "vdm_db/update",
            "vdm_db/feature_display", "vdm_db/configurations", "vdm_db/sheet_metal",
            "vdm_db/cloning", "vdm_db/drafting", "vdm_db/module"});
  std::vector<std::string_view> everything;
  for (const FolderRule& rule : table) everything.push_back(rule.folder);
  addRooms(table, everything,
           {"host/supervision", "host/naming", "host/inspect", "host/modeling", "host/parameters",
            "host/rendering", "host/batch", "host/module", "host/cli"});
  return table;
}

}  // namespace

std::span<const FolderRule> folderRules() {
  static const std::vector<FolderRule> rules = makeFolderRules();
  return rules;
}

std::span<const ForeignRule> foreignRules() {
  static const std::vector<ForeignRule> rules{
      {"the operating system",
       {"dlfcn.h", "link.h", "poll.h", "unistd.h", "fcntl.h", "pthread.h", "locale.h", "signal.h",
        "sys/", "cxxabi.h"},
       {"platform", "vdm_utils", "host"}},
      {"ICU", {"unicode/"}, {kBase}},
      {"SQLite", {"sqlite3"}, {kStorage}},
      {"xxHash", {"xxh"}, {kStorage}},
      {"Open CASCADE", {".hxx", ".lxx", ".gxx"}, {kModelerOcct}},
      {"CLI11", {"CLI/"}, {"host/cli"}},
      {"nlohmann-json", {"nlohmann/"}, {"host/cli", "host/rendering"}},
      {"libpng", {"png.h"}, {"host/rendering"}},
      {"UDUNITS", {"udunits2.h"}, {kExpressions}},
      {"libcsv", {"csv.h"}, {"host/parameters"}},
  };
  return rules;
}

std::vector<std::string> checkTree(const fs::path& root) {
  std::vector<std::string> violations;
  for (const std::string& path : filesOnDisk(root, {".h", ".cpp", ".inc"})) {
    const SourceFile file = readSource(root, path);
    FileChecker(root, file, violations).run();
  }
  return violations;
}

std::vector<std::string> missingFolders(const fs::path& root) {
  std::set<std::string> named;
  for (const FolderRule& rule : folderRules()) named.emplace(rule.folder);
  for (const ForeignRule& rule : foreignRules()) {
    named.insert(rule.allowedFolders.begin(), rule.allowedFolders.end());
  }
  std::vector<std::string> missing;
  std::ranges::copy_if(named, std::back_inserter(missing), [&root](const std::string& folder) {
    return !fs::is_directory(root / folder);
  });
  return missing;
}

std::set<std::string> headersOnDisk(const fs::path& root) {
  const std::vector<std::string> paths = filesOnDisk(root, {".h"});
  return {paths.begin(), paths.end()};
}

}  // namespace architecture
