// Drawings that commands made, in a folder of their own, for tests that damage or share their
// files.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tests/host/cli/script_case.h"
#include "tests/platform/storage/store_testing.h"

namespace cli_testing {

/// A folder in which commands run; the drawing at work in it is a.vdm.
class CommandFolderTest : public testing::Test {
 protected:
  explicit CommandFolderTest(const char* folder, const OdSqliteStoreOptions& options = {})
      : m_shell(std::filesystem::current_path() / folder),
        m_factory(createSqliteStoreFactory(options)) {}

  void run(const std::string& command) const {
    ASSERT_EQ(m_shell.run(command).exitCode, 0) << command;
  }
  [[nodiscard]] std::string path(const std::string& name) const {
    return (m_shell.folder() / name).string();
  }
  [[nodiscard]] storetest::Content contentOf(const std::string& name) const {
    return storetest::readFile(*m_factory, path(name)).value();
  }
  /// Makes a.vdm a copy of that drawing.
  void begin(const char* name) const {
    std::filesystem::copy_file(path(name), path("a.vdm"),
                               std::filesystem::copy_options::overwrite_existing);
  }
  /// None when another process holds the file.
  [[nodiscard]] std::unique_ptr<OdDbRecordStore> open(
      const std::string& name, OdDbStoreOpenMode mode = OdDbStoreOpenMode::kReadWrite) const {
    std::unique_ptr<OdDbRecordStore> store;
    const OdStatus status = m_factory->open(OdString(path(name)), mode, store);
    EXPECT_TRUE(status.ok() || status.code == eFileLocked) << textOf(status);
    return store;
  }

  Shell m_shell;
  std::unique_ptr<OdDbRecordStoreFactory> m_factory;
};

/// With sound.vdm, a plate with a reference, a component and a group.
class SampleDrawingTest : public CommandFolderTest {
 protected:
  explicit SampleDrawingTest(const char* folder) : CommandFolderTest(folder) {
    run("cp $SAMPLES/plate.step . && vdm import plate.step -o a.vdm");
    run("vdm refs add a.vdm 21 --at 60,40,10 --face --name top");
    run("vdm component add a.vdm h hole --diameter 9");
    run("vdm insert a.vdm h --on top --at 30,30,10 --name left");
    run("vdm group a.vdm both 21 top && mv a.vdm sound.vdm");
    m_sound = contentOf("sound.vdm");
  }

  storetest::Content m_sound;
};

/// Stores that refuse at once what another one has locked.
inline OdSqliteStoreOptions impatientStores() {
  OdSqliteStoreOptions options;
  options.lockTimeoutMs = 0;
  options.commitTimeoutMs = 0;
  return options;
}

/// With old.vdm and new.vdm, two states of a drawing. This process saves the second one where a
/// command that is stopped on its way reads or writes the first one.
class StoppedCommandTest : public CommandFolderTest {
 protected:
  using CommandFolderTest::CommandFolderTest;

  /// Saves the new state; false when the command holds the file.
  [[nodiscard]] bool save(OdDbRecordStore& store) const {
    const OdStatus status = saveChanges(store, m_old, m_new);
    EXPECT_TRUE(status.ok() || status.code == eFileLocked) << textOf(status);
    return status.ok();
  }

  storetest::Content m_old;
  storetest::Content m_new;
};

}  // namespace cli_testing
