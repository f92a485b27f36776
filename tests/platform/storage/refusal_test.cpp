// Files that are no drawings, or not ones to trust, are refused with an error that says why.
#include <cstdio>
#include <filesystem>
#include <functional>

#include "platform/storage/record_checksum.h"
#include "platform/storage/storage_format.h"
#include "tests/platform/storage/store_testing.h"

namespace {

using storetest::executeSql;
using storetest::makeContent;

struct Refusal {
  std::function<void(const std::string& path)> prepare;
  OdResult code;
  const char* text;  ///< part of the message
};

std::function<void(const std::string&)> sql(const std::string& text) {
  return [text](const std::string& path) { executeSql(path, text); };
}

std::function<void(const std::string&)> bytes(const std::string& content) {
  return [content](const std::string& path) { writeBytes(path, content); };
}

std::function<void(const std::string&)> poke(std::size_t offset, char value) {
  return [=](const std::string& path) {
    std::string content = readBytes(path);
    content[offset] = value;
    writeBytes(path, content);
  };
}

/// A file that only readers of version 7 understand.
void makeNewer(const std::string& path) {
  odstorage::StoreState state;
  state.minReaderVersion = 7;
  const auto encoded = state.encode();
  const std::string_view value(reinterpret_cast<const char*>(encoded.data()), encoded.size());
  const std::uint64_t sum =
      odstorage::variableChecksum(odstorage::kStateRowId, odstorage::kStateRowKey, value);
  std::string hex;
  for (const std::uint8_t byte : encoded) {
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02X", byte);
    hex += digits;
  }
  executeSql(path, "PRAGMA user_version=7;UPDATE header SET value=x'" + hex +
                       "',sum=" + std::to_string(static_cast<std::int64_t>(sum)) + " WHERE id=1");
}

class Refusals : public storetest::FolderTest {};

TEST_F(Refusals, EachHostileFileIsRefusedWithItsReason) {
  const Refusal kRefusals[] = {
      {bytes(std::string(9000, 'x')), eNotADrawing, "does not start like one"},
      {bytes(""), eNotADrawing, "shorter than the header"},
      {sql("PRAGMA application_id=1234"), eNotADrawing, "0x000004D2, a drawing has 0x56444D31"},
      {makeNewer, eNewerFormat, "version 7, this program knows"},
      {sql("PRAGMA user_version=0"), eUnsupportedVersion, "version 0"},
      {poke(16, 0x20), eCorruptData, "page size is 8192, expected 4096"},
      {poke(18, 2), eCorruptData, "write version is 2"},
      {poke(80, 1), eCorruptData, "unused bytes"},
      {sql("CREATE TRIGGER evil AFTER INSERT ON objects BEGIN SELECT 1; END"), eCorruptData,
       "trigger \"evil\""},
      {sql("CREATE VIEW v AS SELECT 1"), eCorruptData, "view \"v\""},
      {sql("CREATE TABLE more(x)"), eCorruptData, "table \"more\""},
      {sql("ALTER TABLE objects ADD COLUMN extra"), eCorruptData,
       "table \"objects\" is not defined"},
      {sql("DROP TABLE classes"), eCorruptData, "2 of the 3 tables"},
      {sql("DELETE FROM header WHERE id=1"), eCorruptData, "state row is missing"},
      {sql("UPDATE header SET value=x'00' WHERE id=2"), eChecksumMismatch, "header row 2"},
      {sql("DELETE FROM header WHERE id=2"), eChecksumMismatch, "3 rows"},
      {sql("DELETE FROM classes WHERE id=1"), eChecksumMismatch, "4 were saved"},
      {sql("UPDATE classes SET record=CAST(record AS TEXT)"), eCorruptData, "class 1 is damaged"},
      {sql("UPDATE classes SET record=zeroblob(1048577) WHERE id=1"), eLimitExceeded,
       "1048577 bytes"},
      {sql("UPDATE header SET key=printf('%.300c','k') WHERE id=2"), eLimitExceeded, "300 bytes"},
  };
  const auto factory = createSqliteStoreFactory();
  for (const Refusal& refusal : kRefusals) {
    SCOPED_TRACE(refusal.text);
    const std::string path = file("drawing.vdm");
    ASSERT_TRUE(writeFile(*factory, path, makeContent(20, 200)).ok());
    refusal.prepare(path);
    const std::string before = readBytes(path);
    for (const OdDbStoreOpenMode mode :
         {OdDbStoreOpenMode::kReadOnly, OdDbStoreOpenMode::kReadWrite}) {
      std::unique_ptr<OdDbRecordStore> store;
      const OdStatus status = factory->open(path, mode, store);
      EXPECT_EQ(store, nullptr);
      const std::string text = textOf(status);
      EXPECT_EQ(status.code, refusal.code) << text;
      EXPECT_NE(text.find(refusal.text), std::string::npos) << text;
      EXPECT_NE(text.find(path), std::string::npos) << text;
    }
    EXPECT_TRUE(before == readBytes(path)) << "the file was changed";
  }
}

TEST_F(Refusals, RecordsThatWereTamperedWithAreNamed) {
  /// With the code of reading record 5.
  const std::pair<const char*, OdResult> kTamperings[] = {
      {"UPDATE objects SET owner=9 WHERE handle=5", eChecksumMismatch},
      {"UPDATE objects SET class=9 WHERE handle=5", eChecksumMismatch},
      {"UPDATE objects SET class=-1 WHERE handle=5", eCorruptData},
      {"UPDATE objects SET sum=sum+1 WHERE handle=5", eChecksumMismatch},
      {"UPDATE objects SET data=substr(data,2) WHERE handle=5", eChecksumMismatch},
      {"UPDATE objects SET data='text' WHERE handle=5", eCorruptData},
      {"UPDATE objects SET handle=500 WHERE handle=5", eUnknownHandle},
      {"DELETE FROM objects WHERE handle=5", eUnknownHandle},
  };
  const auto factory = createSqliteStoreFactory();
  const std::string path = file("drawing.vdm");
  for (const auto& [change, code] : kTamperings) {
    SCOPED_TRACE(change);
    ASSERT_TRUE(writeFile(*factory, path, makeContent(20, 200)).ok());
    executeSql(path, change);
    std::unique_ptr<OdDbRecordStore> store;
    ASSERT_TRUE(factory->open(path, OdDbStoreOpenMode::kReadOnly, store).ok());
    OdDbRecordView record;
    EXPECT_EQ(store->readRecord(5, record).code, code);
    EXPECT_EQ(record.data, nullptr);
    EXPECT_TRUE(succeeded(store->readRecord(6, record)));
    EXPECT_FALSE(storetest::readAll(*store).has_value());
  }
}

// ---- Files beside a drawing

std::string bigEndianText(std::uint32_t value) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(value >> shift & 0xffU);
  return text;
}

/// The journal of an interrupted save that holds no pages and names a super-journal.
std::string journalThatNames(const std::string& superJournal) {
  const std::string magic = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
  std::string journal = magic + bigEndianText(0) + bigEndianText(1) + bigEndianText(1) +
                        bigEndianText(512) + bigEndianText(odstorage::kPageSize);
  journal.resize(512, '\0');
  std::uint32_t sum = 0;
  for (const char byte : superJournal) sum += static_cast<std::uint32_t>(byte);
  journal += bigEndianText(0x40000000 / odstorage::kPageSize + 1) + superJournal;
  journal += bigEndianText(static_cast<std::uint32_t>(superJournal.size())) + bigEndianText(sum);
  return journal + magic;
}

/// Nothing may act on a file that only pretends to belong to a drawing: neither an opening nor a
/// recovery nor a replacement of the drawing.
TEST_F(Refusals, FilesBesideADrawingAreNotTrusted) {
  namespace fs = std::filesystem;
  const std::string path = file("drawing.vdm");
  const std::string victim = file("thesis.tex");
  const std::pair<std::function<void()>, const char*> kSideFiles[] = {
      {[&] { writeBytes(path + "-journal", journalThatNames(victim)); }, "thesis.tex\", which"},
      {[&] { fs::create_symlink(victim, path + "-journal"); }, "not a regular file"},
      {[&] { fs::create_directory(path + "-journal"); }, "not a regular file"},
      {[&] { writeBytes(path + "-wal", "pages"); }, "write-ahead log"},
  };
  const auto factory = createSqliteStoreFactory();
  const storetest::Content content = makeContent(20, 200);
  for (const auto& [prepare, text] : kSideFiles) {
    SCOPED_TRACE(text);
    fs::remove_all(path + "-journal");
    ASSERT_TRUE(writeFile(*factory, path, content).ok());
    writeBytes(victim, std::string("\0precious", 9));
    prepare();
    const std::string before = m_folder.listing();
    for (const OdDbStoreOpenMode mode :
         {OdDbStoreOpenMode::kReadOnly, OdDbStoreOpenMode::kReadWrite}) {
      std::unique_ptr<OdDbRecordStore> store;
      const OdStatus status = factory->open(path, mode, store);
      EXPECT_EQ(status.code, eCorruptData) << textOf(status);
      EXPECT_NE(textOf(status).find(text), std::string::npos) << textOf(status);
    }
    EXPECT_EQ(m_folder.listing(), before);
    const bool isReplaceable = !fs::is_directory(path + "-journal");
    EXPECT_EQ(writeFile(*factory, path, content).ok(), isReplaceable);
    EXPECT_TRUE(readBytes(victim) == std::string("\0precious", 9));
  }
}

/// A newer format says in its state row which readers understand it.
TEST_F(Refusals, NewerFormatOpensForReadingWhenItSaysSo) {
  const auto factory = createSqliteStoreFactory();
  const std::string path = file("newer.vdm");
  const storetest::Content content = makeContent(20, 200);
  ASSERT_TRUE(writeFile(*factory, path, content).ok());
  executeSql(path, "CREATE TABLE more(x);PRAGMA user_version=2");
  std::unique_ptr<OdDbRecordStore> store;
  EXPECT_EQ(factory->open(path, OdDbStoreOpenMode::kReadWrite, store).code, eNewerFormat);
  EXPECT_TRUE(succeeded(factory->open(path, OdDbStoreOpenMode::kReadOnly, store)));
  ASSERT_NE(store, nullptr);
  EXPECT_EQ(store->formatVersion(), 2);
  EXPECT_TRUE(storetest::readAll(*store) == content);
  executeSql(path, "CREATE VIEW v AS SELECT 1");
  EXPECT_EQ(factory->open(path, OdDbStoreOpenMode::kReadOnly, store).code, eCorruptData);
}

}  // namespace
