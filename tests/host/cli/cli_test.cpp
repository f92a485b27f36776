// Tests of the command `vdm`: scripts from files, and refused command lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "platform/base/new_file.h"
#include "tests/host/cli/script_case.h"

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
    prepare("mkfifo pipe.svg && mkdir folder && cp part.vdm cut.vdm && truncate -s 5000 cut.vdm");
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
      {"vdm props set part.vdm 21 $(printf 'k\\377') v", 2, "key 'k\\xff' is not UTF-8"},
      {"vdm props set part.vdm 21 k $(printf 'v\\303')", 2, "value 'v\\xc3' is not UTF-8"},
      {"vdm import $(printf 'gone\\377.stp') -o b.vdm", 1, "file 'gone\\xff.stp' was not found"},
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
      {"vdm export part.vdm -o /dev/full --force", 1, "*/dev/full' is not a regular file*"},
      {"vdm render part.vdm -o pipe.svg --force", 1, "*pipe.svg' is not a regular file*"},
      {"vdm new no/b.vdm", 1, "output 'no/b.vdm': the folder 'no' does not exist"},
      {"vdm export a.vdm -o b.step", 1, "*"},
      {"vdm recover text.txt -o b.vdm", 1, "*text.txt*"},
      {"vdm info a.vdm --module no.tx", 1, "module '*no.tx' was not found"},
      {"vdm info a.vdm > /dev/full", 1, "standard output cannot be written: *"},
      {"trap '' XFSZ; ulimit -f 8; vdm import $SAMPLES/assembly.step -o b.vdm", 1, "*b.vdm*"},
      {"trap '' XFSZ; ulimit -f 1; vdm export part.vdm -o b.step", 1, "*b.step*"},
  });
}

/// Of two commands that write one new file the second one is refused, however long the first takes.
TEST_F(RefusedCommand, OutputsThatAnotherProgramIsAboutToWrite) {
  OdNameClaim first((m_shell.folder() / "b.vdm").string());
  ASSERT_EQ(first.take(), 0);
  const char* const kLine = "output 'b.vdm' is being written by another program";
  expectRefused({{"vdm new b.vdm", 1, kLine},
                 {"vdm import $SAMPLES/plate.step -o ./b.vdm --force", 1, "output './b.vdm' is*"},
                 {"vdm export part.vdm -o b.vdm", 1, kLine}});
}

/// The exit code tells a command that changed nothing from one whose report was lost.
TEST_F(RefusedCommand, OutputThatCannotBeShown) {
  const std::string kClosedPipe = "mkfifo p; { : < p; } & exec 3> p; wait; rm p; ";
  const std::string kSave = "vdm props set part.vdm 21 length ";
  const std::string kLost = "a file was written, but standard output cannot be*";
  expectRefused({
      {"vdm tree a.vdm > /dev/full", 1, "standard output cannot be written: *"},
      {"vdm tree a.vdm >&-", 1, "standard output cannot be written: *"},
  });
  EXPECT_EQ(m_shell.run(kClosedPipe + "vdm tree a.vdm >&3").exitCode, 128 + SIGPIPE);
  int value = 20;
  for (const std::string& lost :
       {kSave + "20 > /dev/full", kSave + "21 >&-", kClosedPipe + kSave + "22 >&3"}) {
    SCOPED_TRACE(lost);
    const Outcome outcome = m_shell.run(lost);
    Words words;
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(compareLines({"vdm: " + kLost}, outcome.errors, words), "");
    const Outcome saved = m_shell.run("vdm props get part.vdm 21 length");
    EXPECT_EQ(saved.output, std::vector<std::string>{std::to_string(value++)});
  }
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

TEST_F(RefusedCommand, EditsOfModels) {
  prepare("vdm refs add part.vdm 21 --at 60,40,10 --face --name top");
  prepare("vdm component add part.vdm h hole --diameter 9");
  prepare("cp part.vdm far.vdm && vdm move far.vdm 21 --by 0,0,-9e7");
  expectRefused({
      {"vdm refs add part.vdm 21", 2, "neither a subentity such as f_12 or *nor a point*"},
      {"vdm refs add part.vdm 21 f_99", 1, "solid 21 'plate' has no f_99: it has 10 faces, *"},
      {"vdm refs add part.vdm 21 x_1", 2, "subentity 'x_1' is none of f_<number>, *"},
      {"vdm refs add part.vdm 21 f_1 --name top", 1, "name 'top' is taken by feature 'top' (*)"},
      {"vdm refs add part.vdm 21 f_1 --name beef", 2, "name 'beef' reads as a handle, *"},
      {"vdm refs add part.vdm 21 --at 0,0,0 --face", 1, "*f_* and f_*are both within*"},
      {"vdm refs add part.vdm 21 --at 500,0,0", 1, "*nothing lies within*"},
      {"vdm refs add part.vdm 6 f_1", 1, "object 6 is of class *, not a solid"},
      {"vdm refs explain part.vdm bottom", 1, "there is no reference with the name or handle*"},
      {"vdm component add part.vdm h hole --diameter 9", 1, "component 'h': *\"h\" already*"},
      {"vdm component add part.vdm c hole", 2, "a hole needs diameter"},
      {"vdm component add part.vdm c boss --diameter 9 --height 2 --depth 3", 2,
       "a boss takes no depth"},
      {"vdm component add part.vdm c bolt", 2, "kind 'bolt' is none of hole, *"},
      {"vdm component add part.vdm c counterbore --diameter 9 --bore 8 --bore-depth 4", 1,
       "component 'c': the bore's diameter 8 is not more than the hole's diameter 9"},
      {"vdm component add part.vdm c hole --diameter -1", 1, "component 'c': *-1*"},
      {"vdm component add part.vdm c step no.step", 1, "component 'c': *no.step*"},
      {"vdm insert part.vdm nothing --on top", 1, "there is no component 'nothing', *"},
      {"vdm insert part.vdm h --on 21", 2, "no point (at) is given on solid 21"},
      {"vdm insert part.vdm h --on top --at 1,2", 2, "at is '1,2', it must be three finite*"},
      {"vdm insert part.vdm h --on 21 --at 0,0,900", 1, "insert: *nothing lies within*"},
      {"vdm insert part.vdm h --on top --at 900,0,10", 1,
       "insert: component \"h\": at (900, 0, 10) it changes nothing: solid 21 reaches from *"},
      {"vdm move part.vdm 21 --by 1,2,nan", 2, "by is '1,2,nan', it must be three finite*"},
      {"vdm move part.vdm 21 --by 0,1e200,0", 2, "by is '0,1e200,0', numbers are at most 1e+08"},
      {"vdm move far.vdm 21 --by 0,0,-9e7", 1,
       "move: solid 21: the body would reach to coordinate -1.8e+08, at most 1e+08 is possible"},
      {"vdm rotate part.vdm 21 --angle 1e300", 2, "angle is '1e300', numbers are at most 1e+08"},
      {"vdm component add part.vdm c hole --diameter 1e99", 2, "diameter is '1e99', numbers are*"},
      {"vdm refs add part.vdm 21 f_1 --name $(printf 'a\\377')", 2, "name 'a\\xff' is not UTF-8"},
      {"vdm refs add part.vdm 21 f_1 --name $(printf '%0256d')", 2,
       "name '000*' has 256 characters, at most 255 are allowed"},
      {"vdm component add part.vdm $(printf '%0256d') hole --diameter 1", 2,
       "name '000*' has 256 characters, at most 255 are allowed"},
      {"vdm suppress part.vdm 21", 1, "*21 is no component"},
      {"vdm replace part.vdm 21 $SAMPLES/assembly.step", 1, "*holds 6 solids, one is needed"},
      {"vdm move part.vdm 21 --by 1,2,3 --no-modules", 2, "the command needs the modules, *"},
      {"vdm refs audit part.vdm --no-modules", 2, "the command needs the modules, *"},
      {"vdm group part.vdm g", 2, "group 'g' has no members"},
      {"vdm group part.vdm top 21", 1, "name 'top' is taken by *"},
      {"vdm render part.vdm -o p.gif", 2, "output 'p.gif' ends in none of .png, .svg and .glb"},
      {"vdm render part.vdm -o p.png --view 0,0,0", 2, "view '0,0,0' is none of iso, *"},
      {"vdm render part.vdm -o p.png --size 9x9999", 2, "size '9x9999' is not WIDTHxHEIGHT *"},
  });
}

TEST_F(RefusedCommand, ScriptsThatCannotBeRead) {
  const std::pair<const char*, const char*> rows[] = {
      {"[{]", "script '-' is not JSON: error at byte 3"},
      {"{}", "script '-' is not an array of steps"},
      {"[]", "script '-' has no steps"},
      {"[3]", "step 1: 3 is not an object"},
      {R"([{"op": "grow"}])", "step 1: op \"grow\" is none of refs add, *"},
      {R"([{"op": "update"}, {"entity": "21"}])", "step 2: key 'op' is missing"},
      {R"([{"op": "move", "entity": "21"}])", "step 1 (move): 'by' is missing: how far"},
      {R"([{"op": "move", "entity": 21}])", "step 1 (move): key 'entity' is 21, it must be a text"},
      {R"([{"op": "move", "entity": "21", "by": [1, 2]}])",
       "step 1 (move): key 'by' is [1,2], it must be an array of three numbers"},
      {R"([{"op": "update", "forse": true}])",
       "step 1 (update): key 'forse' is not known, update has the keys force"},
      {R"([{"op": "update", "op": "move"}])", "key 'op' comes twice in a step"},
      {R"([{"op": [[[[[[[[1]]]]]]]]}])", "script '-' is nested deeper than 8 levels"},
      {R"([{"op": "move", "entity": "21", "by": [0, 0, 1e9]}])",
       "step 1 (move): by is '0,0,1e+09', numbers are at most 1e+08"},
      {R"([{"op": "erase", "entity": "$gone"}])",
       "step 1 (erase): key 'entity' is '$gone', which no earlier step gave"},
      {R"([{"op": "update", "as": "a"}, {"op": "update", "as": "a"}])",
       "step 2 (update): key 'as' is 'a', which an earlier step has"},
  };
  expectRefused({{"printf '%0100000d' | tr 0 [ | vdm edit part.vdm --script -", 2,
                  "script '-' is nested deeper than 8 levels"}});
  for (const auto& [script, line] : rows) {
    expectRefused(
        {{("echo '" + std::string(script) + "' | vdm edit part.vdm --script -").c_str(), 2, line}});
  }
}

}  // namespace
