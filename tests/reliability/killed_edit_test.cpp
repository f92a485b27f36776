// An edit with its pass is saved wholly or not at all, wherever the process is killed.
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/storage/sqlite_record_store.h"
#include "tests/crash/fault_vfs.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/dump_drawing.h"
#include "tests/support/test_folder.h"

using namespace vdm_host;

namespace {

class KilledEdit : public ModelingTest {
 protected:
  KilledEdit() {
    const OdDbObjectId block = hole(L"H", 20.0);
    m_insert = insert(block, 100.0, 100.0).created.getHandle();
    put(block, 115.0, 100.0);
    put(boss(L"B", 40.0, 20.0), 120.0, 120.0);
    saveAs(m_database, OdString(m_start));
    m_editor.reset();
    m_database.release();
  }

  std::string stateOfFile(OdDbHostAppServices& services) const {
    const OdDbDatabasePtr database = read(services, OdString(m_file));
    return database.isNull() ? std::string() : dumpDrawing(database.get());
  }
  /// Opens the file, moves the insert and saves; ends at file operation `at` of all that.
  [[noreturn]] void editAndSave(std::size_t at) const {
    OdSqliteStoreOptions options;
    options.vfsName = crashtest::faultVfsName();
    options.fileOps = std::make_shared<crashtest::FaultFileOps>();
    OdDbHostAppServices services(createSqliteStoreFactory(options));
    OdStatus status;
    crashtest::faultState().start(crashtest::FaultMode::kKill, at);
    const OdDbDatabasePtr database = services.readFile(OdString(m_file), status);
    if (database.isNull()) ::_exit(1);
    ModelEditor editor(database.get());
    const OdDbObjectId insert = database->getOdDbObjectId(m_insert);
    if (!editor.moveObject(insert, {12.0, 7.0, 0.0}).ok()) ::_exit(2);
    ::_exit(database->save().ok() ? 0 : 3);
  }
  /// The exit code of a process that does it.
  [[nodiscard]] int runKilledAt(std::size_t at) const {
    std::filesystem::copy_file(m_start, m_file, std::filesystem::copy_options::overwrite_existing);
    const pid_t child = ::fork();
    if (child == 0) editAndSave(at);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const TestFolder m_folder;
  const std::string m_start = m_folder.file("start.vdm");
  const std::string m_file = m_folder.file("killed.vdm");
  OdDbHandle m_insert;
};

TEST_F(KilledEdit, IsSavedWhollyOrNotAtAll) {
  std::filesystem::copy_file(m_start, m_file, std::filesystem::copy_options::overwrite_existing);
  const std::string before = stateOfFile(m_files);
  ASSERT_EQ(runKilledAt(std::size_t(-1)), 0);
  const std::string after = stateOfFile(m_files);
  ASSERT_NE(before, after);
  std::size_t kills = 0;
  for (int code = runKilledAt(kills); code != 0; code = runKilledAt(++kills)) {
    ASSERT_EQ(code, crashtest::kKilledExitCode) << kills;
    const std::string found = stateOfFile(m_files);
    ASSERT_TRUE(found == before || found == after) << kills << firstDifference(after, found);
  }
  EXPECT_EQ(stateOfFile(m_files), after);
  EXPECT_GT(kills, 5U);
}

}  // namespace
