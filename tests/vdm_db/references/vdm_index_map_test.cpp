// Tests of the index map: look-up and the stored form with its letters.
#include "vdm_db/references/vdm_index_map.h"

#include "tests/support/reference_testing.h"

namespace {

OdDbSubentId subent(int type, OdGsMarker index) {
  return OdDbSubentId(static_cast<OdDb::SubentType>(type), index);
}

class VdmIndexMapTest : public testing::Test {
 protected:
  void write(OdInt32 count, char letter, std::initializer_list<OdInt32> numbers) {
    m_buffer.clear();
    OdDbMemoryFiler writer(OdDbDwgFiler::kCopyFiler, m_buffer);
    writer.wrInt32(count);
    writer.wrUInt8(static_cast<OdUInt8>(letter));
    for (const OdInt32 number : numbers) writer.wrInt32(number);
  }
  OdDbFilerBuffer m_buffer;
  VdmIndexMap m_map;
};

TEST_F(VdmIndexMapTest, LettersReadAndWrittenDiffer) {
  const struct {
    char letter;
    int read;
    char written;
  } kRows[] = {{'f', 1, 'f'}, {'e', 2, 'e'}, {'v', 3, 'v'}, {'l', 4, 'b'},
               {'c', 5, 'b'}, {'b', 0, 'b'}, {'?', 0, 'b'}};
  for (const auto& row : kRows) {
    write(1, row.letter, {8, 1, 42});
    MemoryReader filer(m_buffer);
    m_map.dwgInFields(&filer);
    ASSERT_NE(m_map.find(subent(row.read, 9)), nullptr) << row.letter;
    EXPECT_EQ(*m_map.find(subent(row.read, 9)), std::vector<int>{42});
    m_buffer.clear();
    OdDbMemoryFiler again(OdDbDwgFiler::kCopyFiler, m_buffer);
    m_map.dwgOutFields(&again);
    EXPECT_EQ(m_buffer.bytes[4], row.written);
  }
}

TEST_F(VdmIndexMapTest, ReadingReplacesAndRefusesImpossibleCounts) {
  const struct {
    OdInt32 count;
    OdInt32 listSize;
    OdResult raised;
  } kRows[] = {{0, 0, eOk},
               {-5, 0, eOk},
               {0x7FFFFFFF, 0, eCorruptData},
               {1, 0x7FFFFFFF, eCorruptData},
               {1, -1, eCorruptData},
               {2, 0, eEndOfStream}};
  for (const auto& row : kRows) {
    write(row.count, 'f', {0, row.listSize});
    m_map.set(subent(1, 1), {1});
    MemoryReader filer(m_buffer);
    EXPECT_EQ(raisedBy([&] { m_map.dwgInFields(&filer); }), row.raised) << row.count;
    EXPECT_TRUE(m_map.isEmpty());
  }
}

}  // namespace
