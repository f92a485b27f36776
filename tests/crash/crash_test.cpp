// At whatever operation a save ends, the drawing opens as before or as after, with nothing lost.
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/base/work_note.h"
#include "tests/crash/fault_vfs.h"
#include "tests/crash/power_loss.h"
#include "tests/platform/storage/store_testing.h"

namespace {

using namespace crashtest;
using storetest::Content;
using storetest::makeContent;

enum class Action { kSave, kSaveAs, kCompact };

Content changed(Content content) {
  for (auto& [handle, record] : content.records) {
    if (handle % 3 == 0) record.data = storetest::noise(350, static_cast<std::uint32_t>(handle));
  }
  content.records[100000] = {1, 3, storetest::noise(9000, 5)};
  content.variables["seed"] = "100001";
  content.classes[3] = "third class";
  return content;
}

Content thinned(Content content) {
  std::erase_if(content.records, [](const auto& item) { return item.first % 4 != 0; });
  return content;
}

Content withLargeBlob(Content content) {
  content.records[100000] = {2, 1, storetest::noise(std::size_t{5} << 20U, 6)};
  content.records[7].data = "changed";
  return content;
}

struct Scenario {
  const char* name;
  bool hasFile;  ///< the drawing exists before
  Content before;
  Content after;
  Action action;
};

std::vector<Scenario> scenarios() {
  const Content small = makeContent(60, 300);
  return {
      {"first save", false, {}, small, Action::kSaveAs},
      {"changed objects", true, small, changed(small), Action::kSave},
      {"erased objects", true, small, thinned(small), Action::kSave},
      {"large blob", true, small, withLargeBlob(small), Action::kSave},
      {"save-as over an old file", true, small, makeContent(40, 200, /*seed=*/3), Action::kSaveAs},
      {"compaction", true, small, small, Action::kCompact},
  };
}

class Crash : public storetest::FolderTest {
 protected:
  /// A small page cache, so that large saves reach the file before their commit.
  Crash() {
    OdSqliteStoreOptions options;
    options.vfsName = faultVfsName();
    options.fileOps = std::make_shared<FaultFileOps>();
    options.cacheKiB = 256;
    m_faulty = createSqliteStoreFactory(options);
  }
  ~Crash() override { faultState().start(FaultMode::kNone); }

  /// Brings the folder into the state before the action.
  void prepare(const Scenario& scenario) {
    faultState().start(FaultMode::kNone);
    putFiles({});
    if (!scenario.hasFile) return;
    // Room to gain for the compaction, and free pages for the others.
    Content larger = scenario.before;
    for (std::uint64_t handle = 500; handle < 560; ++handle) {
      larger.records[handle] = {1, 1, storetest::noise(300, 1)};
    }
    ASSERT_TRUE(writeFile(*m_sound, m_path, larger).ok());
    std::unique_ptr<OdDbRecordStore> store;
    ASSERT_TRUE(m_sound->open(m_path, OdDbStoreOpenMode::kReadWrite, store).ok());
    ASSERT_TRUE(saveChanges(*store, larger, scenario.before).ok());
  }
  [[nodiscard]] PowerLoss::Files files() const {
    PowerLoss::Files found;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.path().string())) {
      found[entry.path().string()] = readBytes(entry.path().string());
    }
    return found;
  }
  /// Makes the folder's files these.
  void putFiles(const PowerLoss::Files& wanted) {
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.path().string())) {
      if (!wanted.contains(entry.path().string())) std::filesystem::remove(entry.path());
    }
    for (const auto& [path, bytes] : wanted) writeBytes(path, bytes);
  }
  /// True when the drawing is as after, false as before; anything else is a failure.
  bool isAfter(const Scenario& scenario) {
    if (!scenario.hasFile && !std::filesystem::exists(m_path)) return false;
    OdStatus status;
    const auto found = storetest::readFile(*m_sound, m_path, &status);
    EXPECT_TRUE(found.has_value()) << textOf(status);
    const bool matchesAfter = found == scenario.after;
    EXPECT_TRUE(matchesAfter || (scenario.hasFile && found == scenario.before));
    return matchesAfter;
  }
  OdStatus act(const Scenario& scenario) {
    if (scenario.action == Action::kSaveAs) return writeFile(*m_faulty, m_path, scenario.after);
    std::unique_ptr<OdDbRecordStore> store;
    OdStatus status = m_faulty->open(m_path, OdDbStoreOpenMode::kReadWrite, store);
    if (!status.ok()) return status;
    if (scenario.action == Action::kCompact) return store->compact();
    return saveChanges(*store, scenario.before, scenario.after);
  }
  /// Acts in a child process that ends at operation `at`; true when it came to its end.
  bool actInChild(const Scenario& scenario, std::size_t at) {
    const pid_t child = ::fork();
    if (child == 0) {
      faultState().start(FaultMode::kKill, at);
      ::_exit(act(scenario).ok() ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    EXPECT_TRUE(code == 0 || code == kKilledExitCode) << code;
    return code != kKilledExitCode;
  }

  /// Ends the action at one operation after the other, each time from the files `start`, until it
  /// comes to its end. Returns the number of tries.
  std::size_t killEverywhere(const Scenario& scenario, const PowerLoss::Files& start) {
    bool finished = false;
    std::size_t at = 0;
    for (; !finished && !HasFailure(); ++at) {
      SCOPED_TRACE(at);
      putFiles(start);
      finished = actInChild(scenario, at);
      EXPECT_TRUE(isAfter(scenario) || !finished);
    }
    return at;
  }

  std::string m_path = file("drawing.vdm");
  std::unique_ptr<OdDbRecordStoreFactory> m_sound = createSqliteStoreFactory();
  std::unique_ptr<OdDbRecordStoreFactory> m_faulty;
};

TEST_F(Crash, KilledAtAnyOperationTheFileIsAsBeforeOrAsAfter) {
  for (const Scenario& scenario : scenarios()) {
    SCOPED_TRACE(scenario.name);
    prepare(scenario);
    EXPECT_GT(killEverywhere(scenario, files()), 5U);
  }
}

TEST_F(Crash, PowerLostAtAnyOperationTheFileIsAsBeforeOrAsAfter) {
  for (const Scenario& scenario : scenarios()) {
    SCOPED_TRACE(scenario.name);
    prepare(scenario);
    PowerLoss disk(files());
    faultState().start(FaultMode::kRecord);
    ASSERT_TRUE(act(scenario).ok());
    const std::vector<FileEvent> events = std::move(faultState().events);
    faultState().start(FaultMode::kNone);
    ASSERT_GT(events.size(), 5U);

    // Long runs of page writes take turns with the ways to survive; all others try every way.
    constexpr auto kWays = static_cast<std::size_t>(Survival::kCount);
    for (std::size_t at = 0; at < events.size() && !HasFailure(); ++at) {
      SCOPED_TRACE(at);
      const bool takesTurns = events.size() > 500 && at > 100 && at + 100 < events.size();
      for (std::size_t way = 0; way < kWays; ++way) {
        if (takesTurns && at % kWays != way) continue;
        SCOPED_TRACE(way);
        putFiles(disk.survivors(static_cast<Survival>(way)));
        isAfter(scenario);
      }
      disk.apply(events[at]);
    }
    // What was reported as saved is saved, whatever the disk had not yet written.
    putFiles(disk.survivors(Survival::kNothing));
    EXPECT_TRUE(isAfter(scenario));
  }
}

TEST_F(Crash, DiskFullAtAnyOperationIsReportedAndLosesNothing) {
  for (const Scenario& scenario : scenarios()) {
    SCOPED_TRACE(scenario.name);
    prepare(scenario);
    const PowerLoss::Files before = files();
    bool finished = false;
    std::size_t diskFull = 0;
    for (std::size_t at = 0; !finished && !HasFailure(); ++at) {
      SCOPED_TRACE(at);
      putFiles(before);
      faultState().start(FaultMode::kFail, at);
      const OdStatus status = act(scenario);
      finished = faultState().count <= at;
      faultState().start(FaultMode::kNone);
      if (status.code == eDiskFull) ++diskFull;
      const std::string text = textOf(status);
      EXPECT_TRUE(status.ok() || !finished) << text;
      EXPECT_TRUE(status.ok() || text.find(m_path + ":") != std::string::npos) << text;
      EXPECT_TRUE(isAfter(scenario) || !status.ok());
      EXPECT_EQ(m_folder.listing().find(".tmp"), std::string::npos) << m_folder.listing();
    }
    EXPECT_GT(diskFull, 0U);
  }
}

/// The last step of a save: the new state is in its place, and that is what the report must say.
TEST_F(Crash, AFolderThatCannotBeSyncedIsReportedAsASave) {
  for (const Scenario& scenario : scenarios()) {
    SCOPED_TRACE(scenario.name);
    prepare(scenario);
    OdWorkBoard board;
    odInstallWorkBoard(&board);
    faultState().start(FaultMode::kFailFolders);
    const OdStatus status = act(scenario);
    faultState().start(FaultMode::kNone);
    odInstallWorkBoard(nullptr);
    EXPECT_EQ(status.code, eFileWriteError) << textOf(status);
    EXPECT_NE(textOf(status).find("the file is saved, but"), std::string::npos) << textOf(status);
    EXPECT_TRUE(board.written);
    EXPECT_TRUE(isAfter(scenario));
  }
}

TEST_F(Crash, AStoreGoesOnAfterAFolderThatCannotBeSynced) {
  const Scenario scenario = scenarios()[1];
  prepare(scenario);
  std::unique_ptr<OdDbRecordStore> store;
  ASSERT_TRUE(succeeded(m_faulty->open(m_path, OdDbStoreOpenMode::kReadWrite, store)));
  faultState().start(FaultMode::kFailFolders);
  EXPECT_FALSE(saveChanges(*store, scenario.before, scenario.after).ok());
  faultState().start(FaultMode::kNone);
  EXPECT_TRUE(storetest::readAll(*store) == scenario.after);
  const Content next = thinned(scenario.after);
  EXPECT_TRUE(succeeded(saveChanges(*store, scenario.after, next)));
  EXPECT_TRUE(storetest::readAll(*store) == next);
}

/// The journal of a save that was interrupted must not be played back into the new file.
TEST_F(Crash, SaveAsOverAnInterruptedSaveKeepsOneOfTheStates) {
  const Scenario interrupted = scenarios()[1];
  const Scenario over = scenarios()[4];
  prepare(interrupted);
  const PowerLoss::Files sound = files();
  PowerLoss::Files hot;
  for (std::size_t at = 0;; ++at) {
    putFiles(sound);
    if (actInChild(interrupted, at)) break;
    if (files().size() == 2) hot = files();  // the last state with a journal
  }
  ASSERT_EQ(hot.size(), 2U);
  EXPECT_GT(killEverywhere(over, hot), 10U);
}

}  // namespace
