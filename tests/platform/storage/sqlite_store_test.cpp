// Tests of the record store on SQLite: content, saving, locks and the files beside the drawing.
#include <filesystem>
#include <functional>

#include "platform/storage/sqlite_record_store.h"
#include "platform/storage/storage_format.h"
#include "tests/platform/storage/store_testing.h"

namespace {

using storetest::Content;
using storetest::makeContent;
using storetest::noise;

using StorePtr = std::unique_ptr<OdDbRecordStore>;

class SqliteStore : public storetest::FolderTest {
 protected:
  StorePtr open(OdDbStoreOpenMode mode = OdDbStoreOpenMode::kReadWrite) {
    StorePtr store;
    EXPECT_TRUE(succeeded(m_factory->open(m_path, mode, store)));
    return store;
  }
  StorePtr openReader() { return open(OdDbStoreOpenMode::kReadOnly); }
  void write(const Content& content) {
    EXPECT_TRUE(succeeded(writeFile(*m_factory, m_path, content)));
  }
  void expectContent(const Content& expected) {
    OdStatus status;
    const auto found = storetest::readFile(*m_factory, m_path, &status);
    EXPECT_TRUE(found == expected) << textOf(status);
  }

  std::unique_ptr<OdDbRecordStoreFactory> m_factory =
      createSqliteStoreFactory({"", nullptr, /*lockTimeoutMs=*/0});
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
  EXPECT_EQ(m_folder.listing(), "drawing.vdm");
  const std::string bytes = readBytes(m_path);
  write(content);
  EXPECT_TRUE(bytes == readBytes(m_path)) << "the same content, but other bytes";

  const StorePtr store = open();
  OdDbRecordView absent;
  const OdStatus status = store->readRecord(53, absent);
  EXPECT_EQ(status.code, eUnknownHandle);
  EXPECT_TRUE(status.text.isEmpty());
  EXPECT_EQ(store->maxHandle(), 0xFFFFFFFFFFFFFFFFU);
  std::uint64_t last = 0;
  std::size_t count = 0;
  EXPECT_TRUE(succeeded(
      store->listRecords([&](OdUInt64 handle, OdUInt32 classId, OdUInt64 owner, std::size_t size) {
        const storetest::Record& record = content.records.at(handle);
        EXPECT_TRUE(classId == record.classId && owner == record.owner) << handle;
        EXPECT_TRUE(size == record.data.size() && handle > last) << handle;
        last = handle;
        return ++count > 0;
      })));
  EXPECT_EQ(count, content.records.size());
}

TEST_F(SqliteStore, OnlyACommitWithoutFailedStepsSaves) {
  const Content content = makeContent(100, 300);
  write(content);
  StorePtr store = open();
  ASSERT_TRUE(store->beginSave().ok());
  EXPECT_TRUE(succeeded(putAll(*store, makeContent(120, 500, /*seed=*/2))));
  EXPECT_TRUE(succeeded(store->removeRecord(3)));
  store->rollbackSave();
  EXPECT_TRUE(storetest::readAll(*store) == content);

  ASSERT_TRUE(store->beginSave().ok());
  EXPECT_TRUE(succeeded(store->removeRecord(3)));
  EXPECT_EQ(store->putRecord({}).code, eInvalidInput);
  EXPECT_EQ(store->commitSave().code, eInvalidInput);
  EXPECT_TRUE(storetest::readAll(*store) == content) << "a failed step was committed";

  ASSERT_TRUE(store->beginSave().ok());
  EXPECT_TRUE(succeeded(store->removeRecord(3)));
  store.reset();  // without commit
  expectContent(content);
}

TEST_F(SqliteStore, RefusesWhatIsBeyondTheLimits) {
  StorePtr store;
  ASSERT_TRUE(m_factory->create(m_path, store).ok());
  OdDbRecordView huge;
  huge.handle = 1;
  huge.size = odstorage::kMaxRecordBytes + 1;
  EXPECT_EQ(store->putSetting({"", "v"}).code, eInvalidInput);
  EXPECT_EQ(store->putSetting({std::string(256, 'k'), "v"}).code, eInvalidInput);
  EXPECT_EQ(store->putSetting({"k", std::string(odstorage::kMaxVariableBytes + 1, 'v')}).code,
            eLimitExceeded);
  EXPECT_EQ(store->putClass({0, "c"}).code, eInvalidInput);
  EXPECT_EQ(store->putClass({1, std::string(odstorage::kMaxClassBytes + 1, 'c')}).code,
            eLimitExceeded);
  EXPECT_TRUE(succeeded(store->putClass({1, "sound"})));
  EXPECT_EQ(store->putRecord(huge).code, eLimitExceeded);
}

// ---- Several programs

TEST_F(SqliteStore, SecondWriterIsRefusedAndReadersAreNot) {
  const Content content = makeContent(10, 100);
  write(content);
  StorePtr writer = open();
  StorePtr second;
  const OdStatus status = m_factory->open(m_path, OdDbStoreOpenMode::kReadWrite, second);
  EXPECT_EQ(status.code, eFileLocked);
  EXPECT_NE(textOf(status).find("file is locked"), std::string::npos);
  EXPECT_EQ(writeFile(*m_factory, m_path, content).code, eFileLocked);
  EXPECT_EQ(m_folder.listing(), "drawing.vdm");
  ASSERT_TRUE(writer->beginSave().ok());
  EXPECT_TRUE(succeeded(writer->removeRecord(1)));
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
  EXPECT_TRUE(succeeded(reader->readRecord(4, record)));
  EXPECT_TRUE(succeeded(saveChanges(*open(), first, second)));  // the view above does not block it
  EXPECT_EQ(reader->readRecord(5, record).code, eFileChanged);
  EXPECT_EQ(reader->readAll([](const OdDbRecordView&) { return true; }).code, eFileChanged);
}

/// Also a save that is larger than the page cache, which would write ahead of its commit.
TEST_F(SqliteStore, ReaderOfOneStateHoldsBackCommits) {
  const Content first = makeContent(10, 100);
  Content second = first;
  for (std::uint64_t handle = 20; handle < 60; ++handle) {
    second.records[handle] = {1, 0, noise(100000, static_cast<std::uint32_t>(handle))};
  }
  OdSqliteStoreOptions options;
  options.cacheKiB = 64;
  options.readersHoldOneState = true;
  options.commitTimeoutMs = 0;
  m_factory = createSqliteStoreFactory(options);
  write(first);
  StorePtr reader = openReader();
  StorePtr writer = open();
  const OdStatus status = saveChanges(*writer, first, second);
  EXPECT_EQ(status.code, eFileLocked) << textOf(status);
  EXPECT_NE(textOf(status).find("still reads"), std::string::npos) << textOf(status);
  EXPECT_TRUE(storetest::readAll(*reader) == first);
  EXPECT_TRUE(storetest::readAll(*openReader()) == first) << "readers do not hold back each other";
  reader.reset();
  EXPECT_TRUE(succeeded(saveChanges(*writer, first, second)));
  expectContent(second);
}

/// Before the first row is written and after the last one.
TEST_F(SqliteStore, WriterOfAMovedReplacedOrDeletedFileSavesNothing) {
  namespace fs = std::filesystem;
  const Content first = makeContent(10, 100);
  const std::string aside = file("aside.vdm");
  const std::function<void()> kChanges[] = {
      [&] { fs::rename(m_path, aside); },
      [&] { fs::remove(m_path); },
      [&] {
        fs::copy_file(m_path, aside);
        fs::rename(aside, m_path);
      },
  };
  for (const auto& change : kChanges) {
    for (const bool isLate : {false, true}) {
      fs::remove(aside);
      write(first);
      StorePtr writer = open();
      ASSERT_TRUE(writer->beginSave().ok());
      if (!isLate) change();
      const OdStatus put = putAll(*writer, makeContent(12, 100));
      if (isLate) change();
      EXPECT_EQ(put.code, isLate ? eOk : eFileChanged);
      const OdStatus status = writer->commitSave();
      EXPECT_EQ(status.code, eFileChanged) << textOf(status);
      EXPECT_EQ(writer->compact().code, eFileChanged);
      writer.reset();
      if (fs::exists(aside)) fs::rename(aside, m_path);
      if (fs::exists(m_path)) expectContent(first);
      EXPECT_LE(m_folder.listing(), "drawing.vdm");
    }
  }
}

// ---- Save-as and compaction

/// Through a link, which stays; who reads the old file keeps its state.
TEST_F(SqliteStore, ReplacesAFileOnlyOnCommitAndKeepsItsPermissions) {
  const Content first = makeContent(10, 100);
  const Content second = makeContent(20, 100);
  write(first);
  std::filesystem::permissions(m_path, std::filesystem::perms(0640));
  StorePtr fresh;
  ASSERT_TRUE(m_factory->create(m_path, fresh).ok());
  EXPECT_TRUE(succeeded(putAll(*fresh, second)));
  expectContent(first);
  fresh->rollbackSave();
  EXPECT_EQ(fresh->commitSave().code, eInvalidOpenState);
  EXPECT_EQ(m_folder.listing(), "drawing.vdm");

  const StorePtr reader = openReader();
  std::filesystem::create_symlink(m_path, file("link.vdm"));
  ASSERT_TRUE(m_factory->create(file("link.vdm"), fresh).ok());
  for (auto item = second.records.rbegin(); item != second.records.rend(); ++item) {
    EXPECT_TRUE(succeeded(fresh->putRecord(storetest::viewOf(item->first, item->second))));
  }
  EXPECT_TRUE(succeeded(putAll(*fresh, second)));  // a record put twice is replaced
  EXPECT_TRUE(succeeded(fresh->commitSave()));
  expectContent(second);
  EXPECT_TRUE(storetest::readAll(*reader) == first);
  EXPECT_TRUE(succeeded(saveChanges(*fresh, second, first)));  // the store is the open file now
  fresh.reset();
  expectContent(first);
  EXPECT_EQ(std::filesystem::status(m_path).permissions(), std::filesystem::perms(0640));
  EXPECT_TRUE(std::filesystem::is_symlink(file("link.vdm")));
  EXPECT_EQ(m_folder.listing(), "drawing.vdm link.vdm");
}

TEST_F(SqliteStore, OfTwoMakersOfANewFileTheFirstOneWins) {
  const Content first = makeContent(10, 100);
  const Content second = makeContent(20, 100);
  StorePtr stores[2];
  for (StorePtr& store : stores) ASSERT_TRUE(succeeded(m_factory->create(m_path, store)));
  EXPECT_TRUE(succeeded(putAll(*stores[0], second)));
  EXPECT_TRUE(succeeded(putAll(*stores[1], first)));
  EXPECT_TRUE(succeeded(stores[1]->commitSave()));
  const OdStatus status = stores[0]->commitSave();
  EXPECT_EQ(status.code, eFileChanged) << textOf(status);
  EXPECT_TRUE(succeeded(saveChanges(*stores[1], first, first)));
  for (StorePtr& store : stores) store.reset();
  expectContent(first);
  EXPECT_EQ(m_folder.listing(), "drawing.vdm");
}

TEST_F(SqliteStore, RemovesWhatAKilledSaveLeft) {
  const std::string leftover = file(".drawing.vdm.0123456789abcdef.tmp");
  for (int round = 0; round < 2; ++round) {
    writeBytes(leftover, "half of a drawing");
    write(makeContent(10, 100));
    EXPECT_EQ(m_folder.listing(), "drawing.vdm");
  }
}

TEST_F(SqliteStore, CompactsWithoutChangingTheContent) {
  const Content first = makeContent(2000, 400);
  Content second = first;
  std::erase_if(second.records, [](const auto& item) { return item.first % 10 != 0; });
  second.records[10].owner = 99;
  second.classes[1] = "renamed";
  write(first);
  const StorePtr store = open();
  EXPECT_TRUE(succeeded(saveChanges(*store, first, second)));
  const std::uint64_t before = std::filesystem::file_size(m_path);
  EXPECT_TRUE(succeeded(store->compact()));
  EXPECT_LT(std::filesystem::file_size(m_path), before / 4);
  expectContent(second);
  EXPECT_TRUE(succeeded(saveChanges(*store, second, first)));
  expectContent(first);
  EXPECT_EQ(m_folder.listing(), "drawing.vdm");
}

}  // namespace
