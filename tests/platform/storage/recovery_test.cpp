// Recovery brings back every intact record of a damaged drawing and says what is lost.
#include <algorithm>
#include <random>
#include <vector>

#include "platform/storage/storage_format.h"
#include "tests/platform/storage/store_testing.h"

namespace {

using odstorage::kPageSize;
using storetest::Content;
using storetest::makeContent;

/// What a recovery found.
class CollectingSink : public OdDbRecoverySink {
 public:
  void classFound(const OdDbStoredClass& item) override { content.classes[item.id] = item.value; }
  void settingFound(const OdDbStoredSetting& item) override {
    content.variables[item.key] = item.value;
  }
  void recordFound(const OdDbRecordView& record) override {
    EXPECT_TRUE(content.records.empty() || content.records.rbegin()->first < record.handle);
    content.records[record.handle] = storetest::recordOf(record);
  }
  void lost(const OdString& line) override { (lines += static_cast<const char*>(line)) += '\n'; }

  Content content;
  std::string lines;
};

class Recovery : public storetest::FolderTest {
 protected:
  void write(const Content& content) {
    m_content = content;
    ASSERT_TRUE(writeFile(*m_factory, m_path, content).ok());
    m_bytes = readBytes(m_path);
  }
  /// Writes records and saves again with those above a handle erased; what stays.
  Content writeAndErase(std::size_t count, OdUInt64 last) {
    const Content first = makeContent(count, 300);
    Content second = first;
    std::erase_if(second.records, [&](const auto& item) { return item.first > last; });
    write(first);
    std::unique_ptr<OdDbRecordStore> store;
    EXPECT_TRUE(m_factory->open(m_path, OdDbStoreOpenMode::kReadWrite, store).ok());
    EXPECT_TRUE(saveChanges(*store, first, second).ok());
    store.reset();
    m_bytes = readBytes(m_path);
    return second;
  }
  void overwritePage(std::size_t number, char value) {
    std::fill_n(m_bytes.begin() + static_cast<std::ptrdiff_t>((number - 1) * kPageSize), kPageSize,
                value);
  }
  /// Recovers the present bytes. What comes back must be a part of the content.
  CollectingSink recover() {
    writeBytes(m_path, m_bytes);
    CollectingSink sink;
    EXPECT_TRUE(succeeded(m_factory->recover(m_path, sink)));
    for (const auto& [handle, record] : sink.content.records) {
      EXPECT_TRUE(record == m_content.records.at(handle)) << handle;
    }
    return sink;
  }
  /// Number of records that start in the page. Roots keep remains of rows that moved elsewhere.
  [[nodiscard]] std::size_t recordsInPage(std::size_t number) const {
    const std::string_view page(m_bytes.data() + (number - 1) * kPageSize, kPageSize);
    return static_cast<std::size_t>(
        std::count_if(m_content.records.begin(), m_content.records.end(), [&](const auto& item) {
          return page.find(std::string_view(item.second.data).substr(0, 40)) !=
                 std::string_view::npos;
        }));
  }

  /// The leaves of the tree of objects: the children of its root.
  [[nodiscard]] std::vector<std::uint32_t> objectLeaves() const {
    const std::size_t root = 3 * kPageSize;
    std::vector<std::uint32_t> leaves;
    for (std::size_t cell = 0; cell < numberAt(root + 3, 2); ++cell) {
      leaves.push_back(numberAt(root + numberAt(root + 12 + 2 * cell, 2), 4));
    }
    leaves.push_back(numberAt(root + 8, 4));
    return leaves;
  }
  /// Appends a page that lists others as free, and enters it in the header.
  enum class Trunk { kSound, kCircle };
  void listAsFree(const std::vector<std::uint32_t>& pages, Trunk kind) {
    const auto trunk = static_cast<std::uint32_t>(m_bytes.size() / kPageSize + 1);
    const std::size_t begin = m_bytes.size();
    m_bytes.resize(m_bytes.size() + kPageSize);
    const auto count = static_cast<std::uint32_t>(pages.size());
    putNumber(begin, kind == Trunk::kCircle ? trunk : 0);
    putNumber(begin + 4, count);
    for (std::uint32_t i = 0; i < count; ++i) putNumber(begin + 8 + std::size_t{4} * i, pages[i]);
    putNumber(32, trunk);
    putNumber(36, count + 1);
  }
  /// Big-endian, as all numbers of the file.
  [[nodiscard]] std::uint32_t numberAt(std::size_t offset, std::size_t size) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = (value << 8U) | static_cast<unsigned char>(m_bytes[offset + i]);
    }
    return value;
  }
  void putNumber(std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
      m_bytes[offset + i] = static_cast<char>(value >> (24U - 8U * i));
    }
  }

  std::unique_ptr<OdDbRecordStoreFactory> m_factory = createSqliteStoreFactory();
  std::string m_path = file("drawing.vdm");
  Content m_content;
  std::string m_bytes;
};

TEST_F(Recovery, LosesOnlyWhatStoodInTheDamagedPage) {
  Content content = makeContent(300, 300);
  content.records[301] = {1, 1, storetest::noise(50000, 77)};
  write(content);
  const std::string sound = m_bytes;
  for (std::size_t page = 1; page <= sound.size() / kPageSize; ++page) {
    SCOPED_TRACE(page);
    m_bytes = sound;
    const std::size_t inPage = recordsInPage(page);
    const bool isOverflow = page > 4 && inPage == 0;
    overwritePage(page, '\x5A');
    const CollectingSink sink = recover();
    EXPECT_GE(sink.content.records.size(),
              m_content.records.size() - inPage - (isOverflow ? 1 : 0));
    EXPECT_NE(sink.lines, "");
    if (page > 4 && inPage > 0) {
      EXPECT_NE(sink.lines.find("301 were saved, " + std::to_string(301 - inPage)),
                std::string::npos)
          << sink.lines;
    }
  }
}

TEST_F(Recovery, NamesTheRecordThatIsDamaged) {
  write(makeContent(100, 300));
  const std::size_t offset = m_bytes.find(m_content.records.at(0x2F).data);
  ASSERT_NE(offset, std::string::npos);
  m_bytes[offset + 3] ^= 1;
  const CollectingSink sink = recover();
  EXPECT_EQ(sink.content.records.size(), 99U);
  EXPECT_FALSE(sink.content.records.contains(0x2F));
  EXPECT_TRUE(sink.content.classes == m_content.classes);
  EXPECT_TRUE(sink.content.variables == m_content.variables);
  EXPECT_NE(sink.lines.find("record 2F on page"), std::string::npos) << sink.lines;
}

TEST_F(Recovery, LeavesOutWhatWasErasedBeforeTheDamage) {
  const Content second = writeAndErase(300, 150);
  overwritePage(4, '\0');  // the root of the objects: every record must be searched for
  const CollectingSink sink = recover();
  EXPECT_TRUE(sink.content.records == second.records) << sink.lines;
}

TEST_F(Recovery, LosesNothingOnPagesThatAreListedAsFreeAndInUse) {
  write(makeContent(300, 300));
  const std::string sound = m_bytes;
  const std::vector<std::uint32_t> leaves = objectLeaves();
  ASSERT_GT(leaves.size(), 10U);
  std::mt19937 random(5);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    m_bytes = sound;
    std::vector<std::uint32_t> listed = leaves;
    std::ranges::shuffle(listed, random);
    listed.resize(1 + random() % listed.size());
    const std::size_t kept = leaves.size() - listed.size();
    std::size_t lost = 0;
    if (round % 2 == 1 && kept > 0) {  // a page is lost as well
      const auto isKept = [&](std::uint32_t page) { return std::ranges::count(listed, page) == 0; };
      const std::uint32_t page = *std::ranges::find_if(leaves, isKept);
      lost = recordsInPage(page);
      overwritePage(page, '\x5A');
    }
    // Every fourth list names a page twice or runs in a circle.
    if (round % 8 == 2) listed.push_back(listed.front());
    listAsFree(listed, round % 8 == 6 ? Trunk::kCircle : Trunk::kSound);
    overwritePage(4, '\0');  // no tree reaches the leaves
    const CollectingSink sink = recover();
    EXPECT_EQ(sink.content.records.size(), m_content.records.size() - lost) << sink.lines;
  }
}

TEST_F(Recovery, LeavesOutErasedRowsWhereOthersAreLost) {
  const Content second = writeAndErase(300, 150);
  m_bytes[m_bytes.find(second.records.at(0x2F).data) + 3] ^= 1;
  const CollectingSink sink = recover();
  EXPECT_FALSE(sink.content.records.contains(0x2F));
  EXPECT_EQ(sink.content.records.size(), second.records.size() - 1) << sink.lines;
}

TEST_F(Recovery, TakesTheVersionInTheTreeBeforeAnOlderOne) {
  const Content first = makeContent(100, 300);
  Content second = first;
  second.records.at(5).data[10] ^= 1;
  write(first);
  const std::string before = m_bytes;
  {
    std::unique_ptr<OdDbRecordStore> store;
    ASSERT_TRUE(m_factory->open(m_path, OdDbStoreOpenMode::kReadWrite, store).ok());
    ASSERT_TRUE(saveChanges(*store, first, second).ok());
  }
  m_content = second;
  m_bytes = readBytes(m_path);
  // The page with the older version, to which nothing refers, and damage to another record.
  const std::size_t page = before.rfind(first.records.at(5).data) / kPageSize;
  m_bytes += before.substr(page * kPageSize, kPageSize);
  m_bytes[m_bytes.find(second.records.at(0x2F).data) + 3] ^= 1;
  EXPECT_TRUE(recover().content.records.contains(5));
}

TEST_F(Recovery, EndsWhereATreeRunsInACircle) {
  write(makeContent(300, 300));
  constexpr std::size_t kRoot = 4;
  char* root = m_bytes.data() + (kRoot - 1) * kPageSize;
  const auto number = [root](std::size_t at) {
    return std::size_t{static_cast<unsigned char>(root[at])} << 8U |
           static_cast<unsigned char>(root[at + 1]);
  };
  // Every child of the inner page, the last one included, becomes the page itself.
  const auto pointTo = [root](std::size_t at) { *std::fill_n(root + at, 3, '\0') = char{kRoot}; };
  ASSERT_EQ(root[0], 5);
  for (std::size_t cell = 0; cell < number(3); ++cell) pointTo(number(12 + 2 * cell));
  pointTo(8);
  const CollectingSink sink = recover();
  EXPECT_EQ(sink.content.records.size(), m_content.records.size()) << "found outside of the tree";
  EXPECT_NE(sink.lines.find("page 4 is claimed twice"), std::string::npos) << sink.lines;
}

TEST_F(Recovery, RefusesWhatHoldsNothing) {
  CollectingSink sink;
  writeBytes(m_path, storetest::noise(50000, 3));
  EXPECT_EQ(m_factory->recover(m_path, sink).code, eNotADrawing);
  write(makeContent(0, 0));
  m_bytes.resize(100);
  writeBytes(m_path, m_bytes);
  EXPECT_EQ(m_factory->recover(m_path, sink).code, eRecoveryFailed);
  EXPECT_EQ(m_factory->recover(file("missing.vdm"), sink).code, eFileNotFound);
  EXPECT_TRUE(sink.content == Content{});
}

}  // namespace
