// Tests of the command `vdm`: scripts from files, and refused command lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "tests/cli/script_case.h"

namespace {

namespace fs = std::filesystem;
using namespace cli_testing;

/// The programs under test come first on the path; samples are at hand.
class CommandEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    const std::string path = std::string(VDM_PROGRAM_FOLDER) + ":" + std::getenv("PATH");
    ASSERT_EQ(setenv("PATH", path.c_str(), 1), 0);
    const Shell samples(fs::current_path() / "samples");
    ASSERT_EQ(samples.run("make_samples .").exitCode, 0);
    ASSERT_EQ(setenv("SAMPLES", samples.folder().c_str(), 1), 0);
  }
};
const testing::Environment* const kEnvironment =
    testing::AddGlobalTestEnvironment(new CommandEnvironment);

std::vector<std::string> scriptNames() {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(VDM_CASE_FOLDER)) {
    names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class CommandScript : public testing::TestWithParam<std::string> {};

TEST_P(CommandScript, RunsAsWritten) {
  const Shell shell(fs::current_path() / GetParam());
  Words words;
  for (const Step& step : readScript(fs::path(VDM_CASE_FOLDER) / (GetParam() + ".case"))) {
    SCOPED_TRACE(GetParam() + ".case:" + std::to_string(step.line) + ": " + step.command);
    const Outcome outcome = shell.run(withWords(step.command, words));
    EXPECT_EQ(compareLines(step.errors, outcome.errors, words), "");
    ASSERT_EQ(outcome.exitCode, step.exitCode);
    ASSERT_EQ(compareLines(step.output, outcome.output, words), "");
  }
}
INSTANTIATE_TEST_SUITE_P(Cases, CommandScript, testing::ValuesIn(scriptNames()),
                         [](const auto& script) { return script.param; });

/// A command line that is refused: exit code, and the one line on standard error.
struct Refusal {
  const char* command;
  int exitCode;
  const char* line;
};

class RefusedCommand : public testing::Test {
 protected:
  RefusedCommand() : m_shell(fs::current_path() / "refused") {
    prepare("vdm new a.vdm");
    prepare("vdm new inch.vdm --units in");
    prepare("vdm import $SAMPLES/assembly.step -o asm.vdm");
    prepare("vdm import $SAMPLES/plate.step -o part.vdm");
    prepare("vdm props set part.vdm 21 length 12.5 --type double");
    prepare("vdm props set part.vdm 21 sizes '[1, 2]' --type array:long");
    prepare("echo 'no drawing, no STEP' > text.txt");
    prepare(": > empty.vdm");
    prepare("mkdir folder && cp part.vdm cut.vdm && truncate -s 5000 cut.vdm");
  }

  void prepare(const std::string& command) { ASSERT_EQ(m_shell.run(command).exitCode, 0); }

  /// Runs the rows: each gives its line, prints nothing else, and leaves every file as it was.
  void expectRefused(const std::vector<Refusal>& rows) {
    const std::map<std::string, std::string> before = m_shell.files();
    for (const Refusal& row : rows) {
      SCOPED_TRACE(row.command);
      const Outcome outcome = m_shell.run(row.command);
      Words words;
      EXPECT_EQ(outcome.exitCode, row.exitCode);
      EXPECT_EQ(compareLines({std::string("vdm: ") + row.line}, outcome.errors, words), "");
      EXPECT_TRUE(outcome.output.empty());
      EXPECT_TRUE(before == m_shell.files()) << "files changed";
    }
  }

  Shell m_shell;
};

TEST_F(RefusedCommand, WrongUsage) {
  expectRefused({
      {"vdm", 2, "a subcommand is required, see --help"},
      {"vdm frobnicate", 2, "*, see --help"},
      {"vdm info", 2, "FILE is required, see --help"},
      {"vdm new b.vdm --units parrot", 2, "units 'parrot' are not known, *"},
      {"vdm props get a.vdm 6x k", 2, "handle '6x' is not 1 to 16 hexadecimal digits"},
      {"vdm props set part.vdm 21 k v --type text", 2, "type 'text' is none of string, *"},
      {"vdm props set part.vdm 21 k v --type map:blob:long", 2, "type 'map:blob:long' is none*"},
      {"vdm props set part.vdm 21 k", 2, "no value is given, *"},
      {"vdm props set part.vdm 21 k v --json-value '{}'", 2, "both VALUE and --json-value*"},
      {"vdm props set part.vdm 21 '' v", 2, "key '' cannot be set, *"},
      {"vdm clone part.vdm 21 --name hole", 2, "*is an entity and cannot be named 'hole'"},
  });
}

TEST_F(RefusedCommand, FilesThatCannotBeUsed) {
  expectRefused({
      {"vdm info nothing.vdm", 1, "file 'nothing.vdm' was not found"},
      {"vdm info folder", 1, "file 'folder' is a folder"},
      {"vdm info text.txt", 1, "*text.txt*"},
      {"vdm info empty.vdm", 1, "*empty.vdm*"},
      {"vdm props list $SAMPLES/plate.step 21", 1, "*plate.step*"},
      {"vdm import nothing.step -o b.vdm", 1, "file 'nothing.step' was not found"},
      {"vdm import text.txt -o b.vdm", 1, "*text.txt*"},
      {"vdm import a.vdm -o b.vdm", 1, "*a.vdm*"},
      {"vdm import a.vdm -o a.vdm --force", 1, "output 'a.vdm' is the input itself"},
      {"vdm import $SAMPLES/plate.step -o a.vdm", 1, "output 'a.vdm' exists, --force replaces it"},
      {"vdm new a.vdm", 1, "output 'a.vdm' exists, --force replaces it"},
      {"vdm new folder --force", 1, "output 'folder' is a folder"},
      {"vdm new no/b.vdm", 1, "output 'no/b.vdm': the folder 'no' does not exist"},
      {"vdm export a.vdm -o b.step", 1, "*"},
      {"vdm recover text.txt -o b.vdm", 1, "*text.txt*"},
      {"vdm info a.vdm --module no.tx", 1, "module '*no.tx' was not found"},
      {"vdm info a.vdm > /dev/full", 1, "standard output cannot be written: *"},
      {"trap '' XFSZ; ulimit -f 8; vdm import $SAMPLES/assembly.step -o b.vdm", 1, "*b.vdm*"},
      {"trap '' XFSZ; ulimit -f 1; vdm export part.vdm -o b.step", 1, "*b.step*"},
  });
}

TEST_F(RefusedCommand, ObjectsAndValuesThatDoNotFit) {
  expectRefused({
      {"vdm props list part.vdm FFFF", 1, "handle FFFF names no object of 'part.vdm'"},
      {"vdm props get part.vdm 21 width", 1, "object 21 has no property 'width'"},
      {"vdm props remove part.vdm 21 width", 1, "object 21 has no property 'width'"},
      {"vdm props set part.vdm 21 length long", 1,
       "property 'length': 'long' is not of type double, a finite number*"},
      {"vdm props set part.vdm 21 length 3 --type long", 1,
       "property 'length' of object 21 is of type double, not long"},
      {"vdm props set part.vdm 21 sizes '[1.5]' --type array:double", 1,
       "property 'sizes' of object 21 is of type array:long, not array:double"},
      {"vdm props set part.vdm 21 sizes '[1, 2.5]'", 1,
       "property 'sizes': '2.5' is not of type long, *"},
      {"vdm props set part.vdm 21 n 21 --type id", 1, "*cannot be of type id: *use type handle"},
      {"vdm props set part.vdm 21 n '{\"a\":1,\"a\":2}' --type map:string:long", 1,
       "property 'n': key 'a' comes twice"},
      {"vdm props set part.vdm 21 n '[1,' --type array:long", 1,
       "property 'n': '[1,' is not JSON, *"},
      {"vdm props set part.vdm 21 n --json-value '{\"type\":\"long\"}'", 1,
       "property 'n': *is not an object with \"type\" and \"value\""},
      {"vdm clone part.vdm 1", 1, "object 1 of class OdDbBlockTable is neither a block nor*"},
      {"vdm clone part.vdm 6", 1, "block '*Model_Space' is a layout*"},
  });
}

}  // namespace
