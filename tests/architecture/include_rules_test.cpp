// Tests of the architecture: the real tree keeps its arrows, and the checker sees when one does
// not.
#include "tests/architecture/include_rules.h"
#include "tests/architecture/tree_page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string lines(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += text + "\n";
  return all;
}

/// A small source tree in the working folder of the test, removed with the object.
class ArtificialTree {
 public:
  ArtificialTree() : m_root(fs::current_path() / "artificial_tree") { fs::remove_all(m_root); }
  ~ArtificialTree() { fs::remove_all(m_root); }

  void header(const std::string& path, const std::string& include = "") {
    write(path, "#pragma once\n" + (include.empty() ? include : "#include " + include + "\n"));
  }
  void source(const std::string& path, const std::string& include) {
    write(path, "#include " + include + "\n");
  }
  void write(const std::string& path, const std::string& text) {
    fs::create_directories((m_root / path).parent_path());
    std::ofstream(m_root / path) << text;
  }
  [[nodiscard]] std::vector<std::string> check() const { return architecture::checkTree(m_root); }

 private:
  fs::path m_root;
};

TEST(Architecture, TreeFollowsTheArrows) {
  EXPECT_EQ(lines(architecture::checkTree(VDM_SOURCE_DIR)), "");
}

TEST(Architecture, EveryFolderOfARuleIsThere) {
  EXPECT_EQ(lines(architecture::missingFolders(VDM_SOURCE_DIR)), "");
  const ArtificialTree empty;
  EXPECT_EQ(architecture::missingFolders("artificial_tree").front(), "host");
}

TEST(Architecture, PageShowsTheTree) {
  const fs::path root(VDM_SOURCE_DIR);
  EXPECT_EQ(lines(architecture::checkTreePage(root, root / "docs/architecture.md")), "");
}

TEST(Architecture, EveryHeaderStandsInTheListOfATarget) {
  std::set<std::string> listed;
  std::ifstream in(VDM_HEADER_LIST);
  ASSERT_TRUE(in) << VDM_HEADER_LIST;
  for (std::string path; std::getline(in, path);) listed.insert(path);
  const std::set<std::string> present = architecture::headersOnDisk(VDM_SOURCE_DIR);
  std::vector<std::string> unlisted;
  std::ranges::set_difference(present, listed, std::back_inserter(unlisted));
  EXPECT_EQ(lines(unlisted), "") << "headers that no target names in HEADERS or PRIVATE_HEADERS";
  EXPECT_FALSE(present.empty());
}

TEST(IncludeChecker, AcceptsACleanTree) {
  ArtificialTree tree;
  tree.header("platform/base/string.h", "<string>");
  tree.header("platform/rx/object.h", "\"platform/base/string.h\"");
  tree.source("platform/rx/object.cpp", "\"platform/rx/object.h\"");
  tree.source("platform/storage/file.cpp", "<sqlite3.h>");
  tree.source("platform/rx/loader.cpp", "<dlfcn.h>");
  tree.header("vdm_db/features/feature.h", "\"vdm_db/common/exports.h\"");
  tree.header("vdm_db/common/exports.h");
  tree.header("platform/platform.h", "\"platform/rx/object.h\"");
  tree.source("host/cli/main.cpp", "\"platform/platform.h\"");
  EXPECT_EQ(lines(tree.check()), "");
}

TEST(IncludeChecker, SeesEachKindOfViolation) {
  struct Row {
    const char* path;
    const char* text;
    const char* complaint;
  };
  const Row rows[] = {
      {"platform/base/a.h", "#pragma once\n#include \"platform/rx/object.h\"\n",
       "platform/base/a.h:2: platform/base may not include platform/rx/object.h"},
      {"platform/gi/a.cpp", "#  include \"platform/modeler/solid.h\" // why\n",
       "platform/gi/a.cpp:1: platform/gi may not include platform/modeler/solid.h"},
      {"vdm_db/features/a.cpp", "#include \"platform/storage/file.h\"\n",
       "vdm_db/features/a.cpp:1: vdm_db/features may not include platform/storage/file.h"},
      {"vdm_db/references/a.cpp", "#include \"vdm_db/model/manager.h\"\n",
       "vdm_db/references/a.cpp:1: vdm_db/references may not include vdm_db/model/manager.h"},
      {"host/naming/a.cpp", "#include \"host/cli/command.h\"\n",
       "host/naming/a.cpp:1: host/naming may not include host/cli/command.h"},
      {"vdm_db/features/a.cpp", "#include \"platform/platform.h\"\n",
       "vdm_db/features/a.cpp:1: includes the umbrella header platform/platform.h, only hosts may"},
      {"platform/rx/a.cpp", "#include \"object.h\"\n",
       "platform/rx/a.cpp:1: includes object.h, no file of that path from the root"},
      {"platform/colour/a.h", "#pragma once\n",
       "platform/colour/a.h:1: its folder has no row in the table of allowed arrows"},
      {"vdm_db/features/a.cpp", "#include <unicode/coll.h>\n",
       "vdm_db/features/a.cpp:1: may not include <unicode/coll.h> of ICU"},
      {"platform/modeler/a.cpp", "#include <TopoDS_Shape.hxx>\n",
       "platform/modeler/a.cpp:1: may not include <TopoDS_Shape.hxx> of Open CASCADE"},
      {"platform/rx/a.cpp", "#include <zlib.h>\n",
       "platform/rx/a.cpp:1: includes <zlib.h>, a library that no row allows"},
      {"platform/rx/object.cpp", "#include <string>\n#include \"platform/rx/object.h\"\n",
       "platform/rx/object.cpp:1: does not include its own header platform/rx/object.h first"},
      {"platform/rx/a.h", "#include <string>\n", "platform/rx/a.h:1: has no #pragma once"},
  };
  for (const Row& row : rows) {
    ArtificialTree tree;
    for (const char* header :
         {"platform/rx/object.h", "platform/modeler/solid.h", "platform/storage/file.h",
          "platform/platform.h", "host/cli/command.h", "vdm_db/model/manager.h"}) {
      tree.header(header);
    }
    tree.write(row.path, row.text);
    EXPECT_EQ(lines(tree.check()), std::string(row.complaint) + "\n");
  }
}

TEST(TreePage, SeesWhatIsMissingOnEitherSide) {
  ArtificialTree tree;
  tree.header("platform/base/string.h");
  tree.header("platform/colour/hue.h");
  tree.write("platform/notes/page.md", "no code");
  tree.write("page.md",
             "text\n```\nplatform/      the runtime\n  base/\n  gone/        not here\n"
             "examples/  tests/\n```\n");
  fs::create_directories("artificial_tree/tests");
  EXPECT_EQ(lines(architecture::checkTreePage("artificial_tree", "artificial_tree/page.md")),
            "platform/base is shown without a text\n"
            "platform/gone is shown, and there is no such folder\n"
            "examples is shown, and there is no such folder\n"
            "platform/colour is not shown\n");
  EXPECT_EQ(lines(architecture::checkTreePage("artificial_tree", "artificial_tree/none.md")),
            "none.md shows no tree\n");
}

}  // namespace
