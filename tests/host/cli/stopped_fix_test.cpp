// `vdm audit --fix` on a drawing that another program works on at the same time.
//
// The command is stopped before each read and each change of a lock in turn. Another process, this
// one, works on the file then. At the end the command has mended the present state of the drawing,
// or it has failed with one line and the drawing is as the other process left it. The states that
// count as mended come from runs without another process.
//
// A process loses all its locks on a file when it closes the file once: nothing here may read the
// drawing while it holds a lock of it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/base/handle.h"
#include "platform/db/database.h"
#include "tests/host/cli/sample_drawing.h"
#include "tests/host/cli/stopped_command.h"

namespace {

namespace fs = std::filesystem;
using namespace cli_testing;
using storetest::Content;
using Store = std::unique_ptr<OdDbRecordStore>;

constexpr const char* kFix = "audit a.vdm --fix --wait 0";

OdSqliteStoreOptions storeOptions() {
  OdSqliteStoreOptions options = impatientStores();
  options.readersHoldOneState = true;
  return options;
}

/// One whole line of that pattern.
bool isLine(const std::string& text, const char* pattern) {
  Words words;
  return text.ends_with('\n') &&
         compareLines({pattern}, {text.substr(0, text.size() - 1)}, words).empty();
}

/// A drawing in two states, the second of them saved by the other process; both lack an object
/// that every drawing has.
class StoppedFix : public StoppedCommandTest {
 protected:
  StoppedFix() : StoppedCommandTest("stopped_fix", storeOptions()) {
    run("cp $SAMPLES/plate.step . && vdm import plate.step -o a.vdm && cp a.vdm old.vdm");
    run("vdm refs add a.vdm 21 --at 60,40,10 --face --name top && mv a.vdm new.vdm");
    for (const char* state : {"old.vdm", "new.vdm"}) {
      const Content sound = contentOf(state);
      Content bad = sound;
      bad.records.erase(OdDbRootHandles::kPaperSpace);
      EXPECT_TRUE(succeeded(saveChanges(*open(state), sound, bad)));
    }
    m_old = contentOf("old.vdm");
    m_new = contentOf("new.vdm");
    m_oldMended = mended("old.vdm");
    m_newMended = mended("new.vdm");
    EXPECT_FALSE(m_oldMended == m_old || m_newMended == m_new || m_oldMended == m_newMended);
  }

  [[nodiscard]] Content mended(const char* state) const {
    begin(state);
    StoppedCommand fix(m_shell, kFix);
    EXPECT_FALSE(fix.start(0));
    EXPECT_EQ(fix.finish(), 0) << fix.errors();
    return contentOf("a.vdm");
  }
  Content m_oldMended;
  Content m_newMended;
};

/// What the other process does while the command is stopped, and once the command has ended.
struct Order {
  const char* name;
  const char* refusal;                       ///< the line of a command that cannot do its work
  std::function<bool(Store&)> whileStopped;  ///< false when the command's lock kept it out
  std::function<void(Store&)> afterwards;
  const Content& left;  ///< the state as the other process leaves it
  /// The command's save may come first and be replaced.
  bool mayReplace = false;
};

TEST_F(StoppedFix, MendsThePresentStateOrLeavesThatOfTheOtherProcess) {
  using Mode = OdDbStoreOpenMode;
  const auto openFor = [this](Mode mode) {
    return [this, mode](Store& store) {
      store = open("a.vdm", mode);
      return store != nullptr;
    };
  };
  const auto openAndSave = [&](Store& store) {
    const bool saved = openFor(Mode::kReadWrite)(store) && save(*store);
    store.reset();
    return saved;
  };
  const auto replace = [this](Store&) {
    fs::copy_file(path("new.vdm"), path("b.vdm"), fs::copy_options::overwrite_existing);
    fs::rename(path("b.vdm"), path("a.vdm"));
    return true;
  };
  const auto nothing = [](Store&) {};
  const Order orders[] = {
      {"saves", "is never refused", openAndSave, nothing, m_new},
      {"holds the write lock and saves", "vdm: *a.vdm: *locked by another program",
       openFor(Mode::kReadWrite), [&](Store& store) { EXPECT_TRUE(save(*store)); }, m_new},
      {"reads", "vdm: *a.vdm: saving failed: another program still reads*",
       openFor(Mode::kReadOnly), nothing, m_old},
      {"replaces the file", "vdm: *a.vdm: saving failed: the file was *replaced*", replace, nothing,
       m_new, /*mayReplace=*/true},
  };
  const std::size_t step = std::getenv("VDM_LONG_TESTS") != nullptr ? 1 : 3;
  for (const Order& order : orders) {
    SCOPED_TRACE(order.name);
    std::size_t done = 0;
    std::size_t refused = 0;
    for (std::size_t at = 1;; at += step) {
      SCOPED_TRACE(at);
      begin("old.vdm");
      StoppedCommand fix(m_shell, kFix);
      if (!fix.start(at)) break;
      Store store;
      const bool worked = order.whileStopped(store);
      const int exitCode = fix.finish();
      if (worked) order.afterwards(store);
      store.reset();
      const Content& present = worked ? order.left : m_old;
      const Content& mended = &present == &m_new ? m_newMended : m_oldMended;
      const Content after = contentOf("a.vdm");
      if (exitCode == 0) {
        ++done;
        EXPECT_TRUE(after == mended || (order.mayReplace && after == present));
      } else {
        ++refused;
        EXPECT_EQ(exitCode, 1);
        EXPECT_TRUE(after == present) << "a failed fix changed the file";
        EXPECT_TRUE(worked && isLine(fix.errors(), order.refusal)) << fix.errors();
      }
    }
    EXPECT_GT(done, 0U) << "no step after the save";
    EXPECT_EQ(refused == 0, &order == &orders[0]);
  }
}

}  // namespace
