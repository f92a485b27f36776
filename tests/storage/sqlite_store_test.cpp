// Tests of the record store on SQLite: content, saving, locks and what stands beside the file.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "platform/storage/sqlite_record_store.h"
#include "platform/storage/storage_format.h"
#include "tests/storage/store_testing.h"

namespace {

using storetest::Content;
using storetest::makeContent;
using storetest::noise;

using StorePtr = std::unique_ptr<OdDbRecordStore>;

OdSqliteStoreOptions impatient() {
  OdSqliteStoreOptions options;
  options.lockTimeoutMs = 0;
  return options;
}

class SqliteStore : public storetest::FolderTest {
 protected:
  StorePtr open(OdDbStoreOpenMode mode = OdDbStoreOpenMode::kReadWrite) {
    StorePtr store;
    EXPECT_STORE_OK(m_factory->open(m_path, mode, store));
    return store;
  }
  StorePtr openReader() { return open(OdDbStoreOpenMode::kReadOnly); }
  void write(const Content& content) { EXPECT_STORE_OK(writeFile(*m_factory, m_path, content)); }
  void expectContent(const Content& expected) {
    OdDbStoreStatus status;
    const auto found = storetest::readFile(*m_factory, m_path, status);
    ASSERT_TRUE(found.has_value()) << storetest::textOf(status);
    EXPECT_TRUE(*found == expected);
  }

  std::unique_ptr<OdDbRecordStoreFactory> m_factory = createSqliteStoreFactory(impatient());
  std::string m_path = file("drawing.vdm");
};

TEST_F(SqliteStore, RoundTripsEveryKindOfContent) {
  Content content = makeContent(50, 300);
  content.records[51] = {7, 3, ""};
  content.records[52] = {0xFFFFFFFFU, ~std::uint64_t{0}, noise(5 << 20U, 9)};
  content.records[0x7FFFFFFFFFFFFFFFU] = {1, 1, "last positive key"};
  content.records[0x8000000000000000U] = {1, 2, "first negative key"};
  content.records[0xFFFFFFFFFFFFFFFFU] = {1, 2, "last handle"};
  content.variables["name \xC3\xA4"] = "";
  write(content);
  expectContent(content);
  EXPECT_EQ(listing(), "drawing.vdm");

  const StorePtr store = open();
  EXPECT_EQ(store->maxHandle(), 0xFFFFFFFFFFFFFFFFU);
  std::vector<std::uint64_t> handles;
  EXPECT_STORE_OK(
      store->listRecords([&](OdUInt64 handle, OdUInt32 classId, OdUInt64 owner, std::size_t size) {
        const storetest::Record& record = content.records.at(handle);
        EXPECT_EQ(classId, record.classId);
        EXPECT_EQ(owner, record.owner);
        EXPECT_EQ(size, record.data.size());
        handles.push_back(handle);
        return true;
      }));
  EXPECT_EQ(handles.size(), content.records.size());
  EXPECT_TRUE(std::is_sorted(handles.begin(), handles.end()));
}

TEST_F(SqliteStore, GivesTheSameBytesForTheSameContent) {
  const Content content = makeContent(200, 300);
  write(content);
  const std::string first = storetest::readBytes(m_path);
  write(content);
  EXPECT_TRUE(first == storetest::readBytes(m_path));
}

TEST_F(SqliteStore, TakesFreshRecordsInAnyOrder) {
  const Content content = makeContent(30, 200);
  StorePtr store;
  ASSERT_TRUE(m_factory->create(m_path, store).ok());
  for (auto item = content.records.rbegin(); item != content.records.rend(); ++item) {
    const auto& [handle, record] = *item;
    const OdDbRecordView view{handle, record.classId, record.owner,
                              reinterpret_cast<const OdUInt8*>(record.data.data()),
                              record.data.size()};
    EXPECT_STORE_OK(store->putRecord(view));
    EXPECT_STORE_OK(store->putRecord(view));  // twice: replaces
  }
  EXPECT_STORE_OK(putAll(*store, content));
  EXPECT_STORE_OK(store->commitSave());
  store.reset();
  expectContent(content);
}

TEST_F(SqliteStore, SavesChangesAndGoesOnSaving) {
  const Content first = makeContent(100, 300);
  write(first);
  Content second = first;
  second.records[5].data = "changed";
  second.records[6].owner = 99;
  second.records.erase(7);
  second.records[1000] = {1, 5, noise(20000, 4)};
  second.variables["seed"] = "1000";
  second.classes[3] = "third";
  Content third = second;
  third.records.erase(1000);
  third.records[7] = {2, 2, "back"};
  third.classes[1] = "renamed";

  StorePtr store = open();
  EXPECT_STORE_OK(saveChanges(*store, first, second));
  expectContent(second);
  EXPECT_STORE_OK(saveChanges(*store, second, third));
  store.reset();
  expectContent(third);
  EXPECT_EQ(listing(), "drawing.vdm");
}

TEST_F(SqliteStore, RollbackReturnsToTheSavedState) {
  const Content content = makeContent(100, 300);
  write(content);
  StorePtr store = open();
  ASSERT_TRUE(store->beginSave().ok());
  EXPECT_STORE_OK(putAll(*store, makeContent(120, 500, /*seed=*/2)));
  EXPECT_STORE_OK(store->removeRecord(3));
  store->rollbackSave();
  OdDbStoreStatus status;
  EXPECT_TRUE(storetest::readAll(*store, status) == content) << storetest::textOf(status);

  ASSERT_TRUE(store->beginSave().ok());
  EXPECT_STORE_OK(store->removeRecord(3));
  store.reset();  // without commit
  expectContent(content);
}

TEST_F(SqliteStore, NeverCommitsASaveWithAFailedStep) {
  const Content content = makeContent(10, 100);
  write(content);
  const StorePtr store = open();
  ASSERT_TRUE(store->beginSave().ok());
  EXPECT_STORE_OK(store->removeRecord(3));
  EXPECT_EQ(store->putRecord({}).code, eInvalidInput);
  EXPECT_EQ(store->commitSave().code, eInvalidInput);
  OdDbStoreStatus status;
  EXPECT_TRUE(storetest::readAll(*store, status) == content);
}

TEST_F(SqliteStore, RefusesWhatIsBeyondTheLimits) {
  const StorePtr store = [&] {
    StorePtr made;
    EXPECT_STORE_OK(m_factory->create(m_path, made));
    return made;
  }();
  OdDbRecordView huge;
  huge.handle = 1;
  huge.size = odstorage::kMaxRecordBytes + 1;
  EXPECT_EQ(store->putVariable({"", "v"}).code, eInvalidInput);
  EXPECT_EQ(store->putVariable({std::string(256, 'k'), "v"}).code, eInvalidInput);
  EXPECT_EQ(store->putVariable({"k", std::string(odstorage::kMaxVariableBytes + 1, 'v')}).code,
            eLimitExceeded);
  EXPECT_EQ(store->putClass({0, "c"}).code, eInvalidInput);
  EXPECT_EQ(store->putClass({1, std::string(odstorage::kMaxClassBytes + 1, 'c')}).code,
            eLimitExceeded);
  EXPECT_STORE_OK(store->putClass({1, "sound"}));
  EXPECT_EQ(store->putRecord(huge).code, eLimitExceeded);
}

// --- Reading only what is asked for --------------------------------------------------------------

/// All that was read from files, as the kernel counts it.
std::uint64_t bytesReadByThisProcess() {
  const std::string text = storetest::readBytes("/proc/self/io");
  return std::stoull(text.substr(text.find("rchar:") + 6));
}

TEST_F(SqliteStore, OpensAndReadsARecordWithoutTouchingTheOthers) {
  write(makeContent(20000, 400));
  const std::uint64_t size = std::filesystem::file_size(m_path);
  const std::uint64_t before = bytesReadByThisProcess();
  const StorePtr store = openReader();
  OdDbRecordView record;
  EXPECT_STORE_OK(store->readRecord(10000, record));
  const std::uint64_t read = bytesReadByThisProcess() - before;
  EXPECT_GT(size, 5000000U);
  EXPECT_LT(read, 20 * odstorage::kPageSize) << "of " << size;
}

TEST_F(SqliteStore, TellsAbsenceWithoutText) {
  write(makeContent(10, 100));
  for (const OdDbStoreOpenMode mode :
       {OdDbStoreOpenMode::kReadOnly, OdDbStoreOpenMode::kReadWrite}) {
    const StorePtr store = open(mode);
    OdDbRecordView record;
    const OdDbStoreStatus status = store->readRecord(11, record);
    EXPECT_EQ(status.code, eUnknownHandle);
    EXPECT_TRUE(status.text.isEmpty());
    OdUInt32 classId = 0;
    OdUInt64 owner = 0;
    EXPECT_STORE_OK(store->readRecordHeader(8, classId, owner));
    EXPECT_EQ(owner, 2U);
  }
}

// --- Several programs ----------------------------------------------------------------------------

TEST_F(SqliteStore, SecondWriterIsRefusedAndReadersAreNot) {
  const Content content = makeContent(10, 100);
  write(content);
  StorePtr writer = open();
  StorePtr second;
  const OdDbStoreStatus status = m_factory->open(m_path, OdDbStoreOpenMode::kReadWrite, second);
  EXPECT_EQ(status.code, eFileLocked);
  EXPECT_NE(storetest::textOf(status).find("file is locked"), std::string::npos);
  EXPECT_EQ(writeFile(*m_factory, m_path, content).code, eFileLocked);
  EXPECT_EQ(listing(), "drawing.vdm");
  ASSERT_TRUE(writer->beginSave().ok());
  EXPECT_STORE_OK(writer->removeRecord(1));
  expectContent(content);
  writer.reset();
  EXPECT_NE(open(), nullptr);
}

TEST_F(SqliteStore, ReaderNeverMixesTwoStates) {
  const Content first = makeContent(10, 100);
  Content second = first;
  second.records.erase(4);
  write(first);
  const StorePtr reader = openReader();
  EXPECT_EQ(reader->beginSave().code, eReadOnlyDatabase);
  OdDbRecordView record;
  EXPECT_STORE_OK(reader->readRecord(4, record));
  EXPECT_STORE_OK(saveChanges(*open(), first, second));  // the view above does not block it
  EXPECT_EQ(reader->readRecord(5, record).code, eFileChanged);
  EXPECT_EQ(reader->readAll([](const OdDbRecordView&) { return true; }).code, eFileChanged);
}

TEST_F(SqliteStore, ReaderOfAReplacedFileKeepsItsState) {
  const Content first = makeContent(10, 100);
  write(first);
  const StorePtr reader = openReader();
  write(makeContent(300, 100));
  OdDbStoreStatus status;
  EXPECT_TRUE(storetest::readAll(*reader, status) == first) << storetest::textOf(status);
}

TEST_F(SqliteStore, WriterOfAMovedFileSavesNothing) {
  const Content first = makeContent(10, 100);
  const Content second = makeContent(12, 100);
  write(first);
  const StorePtr writer = open();
  std::filesystem::rename(m_path, file("moved.vdm"));
  EXPECT_EQ(saveChanges(*writer, first, second).code, eFileChanged);
  EXPECT_EQ(writer->compact().code, eFileChanged);
  m_path = file("moved.vdm");
  expectContent(first);
}

// --- Save-as and compaction ----------------------------------------------------------------------

TEST_F(SqliteStore, ReplacesAFileOnlyOnCommitAndKeepsItsPermissions) {
  const Content first = makeContent(10, 100);
  const Content second = makeContent(20, 100);
  write(first);
  ::chmod(m_path.c_str(), 0640);
  StorePtr fresh;
  ASSERT_TRUE(m_factory->create(m_path, fresh).ok());
  EXPECT_STORE_OK(putAll(*fresh, second));
  expectContent(first);
  fresh->rollbackSave();
  EXPECT_EQ(fresh->commitSave().code, eInvalidOpenState);
  EXPECT_EQ(listing(), "drawing.vdm");

  ASSERT_TRUE(m_factory->create(m_path, fresh).ok());
  EXPECT_STORE_OK(putAll(*fresh, second));
  EXPECT_STORE_OK(fresh->commitSave());
  EXPECT_STORE_OK(saveChanges(*fresh, second, first));  // the store is the open file now
  fresh.reset();
  expectContent(first);
  struct stat found = {};
  ASSERT_EQ(::stat(m_path.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777U, 0640U);
  EXPECT_EQ(listing(), "drawing.vdm");
}

TEST_F(SqliteStore, FollowsALinkInsteadOfReplacingIt) {
  const Content content = makeContent(10, 100);
  write(makeContent(3, 100));
  std::filesystem::create_symlink(m_path, file("link.vdm"));
  EXPECT_STORE_OK(writeFile(*m_factory, file("link.vdm"), content));
  EXPECT_TRUE(std::filesystem::is_symlink(file("link.vdm")));
  expectContent(content);
}

TEST_F(SqliteStore, LeftoversOfAnotherFileDoNotReachTheFreshOne) {
  const Content content = makeContent(10, 100);
  storetest::writeBytes(m_path, "not a drawing");
  storetest::writeBytes(m_path + "-journal", noise(9000, 1));
  storetest::writeBytes(m_path + "-wal", noise(9000, 2));
  write(content);
  EXPECT_EQ(listing(), "drawing.vdm");
  expectContent(content);
}

TEST_F(SqliteStore, CompactsWithoutChangingTheContent) {
  const Content first = makeContent(2000, 400);
  Content second = first;
  std::erase_if(second.records, [](const auto& item) { return item.first % 10 != 0; });
  write(first);
  const StorePtr store = open();
  EXPECT_STORE_OK(saveChanges(*store, first, second));
  const std::uint64_t before = std::filesystem::file_size(m_path);
  EXPECT_STORE_OK(store->compact());
  EXPECT_LT(std::filesystem::file_size(m_path), before / 4);
  expectContent(second);
  EXPECT_STORE_OK(saveChanges(*store, second, first));
  expectContent(first);
  EXPECT_EQ(listing(), "drawing.vdm");
}

TEST_F(SqliteStore, NamesTheFileThatCannotBeReached) {
  StorePtr store;
  const std::string missing = file("missing.vdm");
  const OdDbStoreStatus status = m_factory->open(missing, OdDbStoreOpenMode::kReadWrite, store);
  EXPECT_EQ(status.code, eFileNotFound);
  EXPECT_NE(storetest::textOf(status).find(missing), std::string::npos);
  EXPECT_EQ(m_factory->open(folder(), OdDbStoreOpenMode::kReadOnly, store).code, eFileAccess);
  EXPECT_EQ(m_factory->create(folder(), store).code, eFileAccess);
  EXPECT_EQ(m_factory->create(folder() + "/none/x.vdm", store).code, eFileNotFound);
  EXPECT_EQ(m_factory->open("", OdDbStoreOpenMode::kReadOnly, store).code, eInvalidInput);
  EXPECT_EQ(listing(), "");
}

TEST_F(SqliteStore, TellsAWriteProtectedFolder) {
  if (::geteuid() == 0) GTEST_SKIP() << "nothing is write-protected for this user";
  ::chmod(folder().c_str(), 0555);
  StorePtr store;
  EXPECT_EQ(m_factory->create(m_path, store).code, eFileAccess);
  ::chmod(folder().c_str(), 0755);
}

}  // namespace
