// A drawing that commands made, for tests that damage its file.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tests/host/cli/script_case.h"
#include "tests/platform/storage/store_testing.h"

namespace cli_testing {

/// A folder of its own with sound.vdm, a plate with a reference, a component and a group.
class SampleDrawingTest : public testing::Test {
 protected:
  explicit SampleDrawingTest(const char* folder)
      : m_shell(std::filesystem::current_path() / folder) {
    run("cp $SAMPLES/plate.step . && vdm import plate.step -o a.vdm");
    run("vdm refs add a.vdm 21 --at 60,40,10 --face --name top");
    run("vdm component add a.vdm h hole --diameter 9");
    run("vdm insert a.vdm h --on top --at 30,30,10 --name left");
    run("vdm group a.vdm both 21 top && mv a.vdm sound.vdm");
    m_sound = storetest::readFile(*m_factory, path("sound.vdm")).value();
  }

  void run(const std::string& command) { ASSERT_EQ(m_shell.run(command).exitCode, 0) << command; }
  [[nodiscard]] std::string path(const std::string& name) const {
    return (m_shell.folder() / name).string();
  }
  /// Makes a.vdm the sound drawing.
  void restore() const {
    std::filesystem::copy_file(path("sound.vdm"), path("a.vdm"),
                               std::filesystem::copy_options::overwrite_existing);
  }
  /// a.vdm, open for writing.
  [[nodiscard]] std::unique_ptr<OdDbRecordStore> openStore() const {
    std::unique_ptr<OdDbRecordStore> store;
    EXPECT_TRUE(succeeded(m_factory->open(path("a.vdm"), OdDbStoreOpenMode::kReadWrite, store)));
    return store;
  }

  Shell m_shell;
  std::unique_ptr<OdDbRecordStoreFactory> m_factory = createSqliteStoreFactory();
  storetest::Content m_sound;
};

}  // namespace cli_testing
