// A reading command answers from one state of the drawing, wherever another program saves.
//
// The command is stopped before each read and each change of a lock in turn. Another process, this
// one, saves then, or is refused. The answer must be that of the drawing before the save or of the
// one after it, to the byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/host/cli/sample_drawing.h"
#include "tests/host/cli/stopped_command.h"

namespace {

namespace fs = std::filesystem;
using namespace cli_testing;

/// A reading command, and the file that it writes.
struct ReadingCommand {
  const char* line;
  const char* output = "";
};
constexpr ReadingCommand kCommands[] = {
    {"info a.vdm"},
    {"tree a.vdm"},
    {"dump a.vdm"},
    {"refs list a.vdm"},
    {"refs audit a.vdm"},
    {"feature list a.vdm"},
    {"component list a.vdm"},
    {"props list a.vdm 21"},
    {"audit a.vdm"},
    {"export a.vdm -o out.step --force --reproducible", "out.step"},
    {"render a.vdm -o out.svg --labels --force", "out.svg"},
};

/// Exit code, what was printed, what was written.
struct Answer {
  int exitCode = -1;
  std::string text;
  std::string file;
  friend bool operator==(const Answer&, const Answer&) = default;
};

class StoppedReader : public StoppedCommandTest {
 protected:
  StoppedReader() : StoppedCommandTest("stopped", impatientStores()) {
    run("cp $SAMPLES/plate.step . && vdm import plate.step -o a.vdm");
    run("vdm refs add a.vdm 21 --at 60,40,10 --face --name top");
    run("vdm component add a.vdm h hole --diameter 9");
    run("vdm insert a.vdm h --on top --at 30,30,10 --name left");
    run("cp a.vdm old.vdm");
    run("vdm insert a.vdm h --on top --at 90,30,10 --name right");
    run("vdm move a.vdm left --by 5,5,0 && vdm props set a.vdm 21 state new");
    run("vdm refs add a.vdm 21 --at 0,0,5 --edge --name corner && mv a.vdm new.vdm");
    m_old = contentOf("old.vdm");
    m_new = contentOf("new.vdm");
    begin("old.vdm");
    EXPECT_TRUE(save(*open("a.vdm")));  // the size of the file is a part of what commands show
    fs::rename(path("a.vdm"), path("new.vdm"));
  }

  /// Nothing of an earlier command is left.
  void beginAnew(const char* state) const {
    begin(state);
    for (const char* name : {"out.step", "out.svg"}) fs::remove(path(name));
  }
  Answer finish(const ReadingCommand& command, StoppedCommand& process) const {
    const int exitCode = process.finish();
    const std::string written = *command.output == '\0' ? "" : readBytes(path(command.output));
    return {exitCode, process.output(), written};
  }
  Answer answerOf(const ReadingCommand& command, const char* state) {
    beginAnew(state);
    StoppedCommand process(m_shell, command.line);
    EXPECT_FALSE(process.start(0));
    return finish(command, process);
  }
};

TEST_F(StoppedReader, AnswersFromOneState) {
  const std::size_t step = std::getenv("VDM_LONG_TESTS") != nullptr ? 1 : 3;
  for (const ReadingCommand& command : kCommands) {
    SCOPED_TRACE(command.line);
    const Answer before = answerOf(command, "old.vdm");
    const Answer after = answerOf(command, "new.vdm");
    EXPECT_EQ(before.exitCode, 0);
    EXPECT_FALSE(before.text.empty());
    std::size_t stops = 0;
    std::size_t saves = 0;
    for (std::size_t at = 1;; at += step) {
      beginAnew("old.vdm");
      StoppedCommand process(m_shell, command.line);
      const bool isStopped = process.start(at);
      const bool saved = isStopped && save(*open("a.vdm"));
      const Answer answer = finish(command, process);
      EXPECT_TRUE(answer == before || (saved && answer == after))
          << "step " << at << ": exit " << answer.exitCode << "\n"
          << answer.text;
      if (!isStopped) break;
      ++stops;
      if (saved) ++saves;
    }
    EXPECT_GT(stops, 8 / step);
    EXPECT_LT(saves, stops) << "the reader held no lock";
    EXPECT_TRUE(save(*open("a.vdm"))) << "the reader left a lock";
  }
}

}  // namespace
