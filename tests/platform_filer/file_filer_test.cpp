// Records: the bytes of each primitive, and what readers refuse.
#include "platform/filer/file_filer.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <map>

#include "platform/base/error.h"
#include "platform/filer/id_filer.h"
#include "platform/filer/memory_filer.h"

namespace {

using Bytes = std::vector<OdUInt8>;

template <class Call>
OdResult raisedBy(const Call& call) {
  try {
    call();
  } catch (const OdError& error) {
    return error.code();
  }
  return eOk;
}

/// Ids by their handles, as a database gives them.
class Ids {
 public:
  OdDbObjectId operator()(OdUInt64 handle) {
    OdDbIdRecord& record = m_records[handle];
    record.handle = handle;
    return OdDbObjectId(&record);
  }
  static OdDbObjectId resolve(void* self, OdUInt64 handle) {
    return (*static_cast<Ids*>(self))(handle);
  }

 private:
  std::map<OdUInt64, OdDbIdRecord> m_records;
};

/// One primitive: what is written, the bytes of its field, and what reads it back.
struct PrimitiveRow {
  const char* name;
  Bytes bytes;
  std::function<void(OdDbDwgFiler&)> write;
  std::function<bool(OdDbDwgFiler&)> readsBack;
};

#define PRIMITIVE(Name, value, ...)                                                      \
  {                                                                                      \
#Name, Bytes{__VA_ARGS__ },                                                          \
                 [](OdDbDwgFiler &                                                       \
                    f) { f.wr##Name(value); }, [](OdDbDwgFiler &                         \
                                                  f) { return f.rd##Name() == (value); } \
  }
const OdInt64 kLeastInt64 = std::numeric_limits<OdInt64>::min();
const std::vector<PrimitiveRow> kPrimitives = {
    PRIMITIVE(Bool, true, 1),
    PRIMITIVE(Int8, OdInt8{-2}, 0xFE),
    PRIMITIVE(UInt8, OdUInt8{0xFE}, 0xFE),
    PRIMITIVE(Int16, OdInt16{-64}, 0x7F),
    PRIMITIVE(Int16, OdInt16{64}, 0x80, 0x01),
    PRIMITIVE(Int32, OdInt32{-65}, 0x81, 0x01),
    PRIMITIVE(Int64, kLeastInt64, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01),
    PRIMITIVE(Double, 1.0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F),
    PRIMITIVE(String, OdString(L"ä"), 2, 0xC3, 0xA4),
    PRIMITIVE(DbHandle, OdDbHandle(0x80), 0x80, 0x01),
    PRIMITIVE(Point2d, OdGePoint2d(0, 2), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40),
};
#undef PRIMITIVE

TEST(OdDbFileFiler, GivesEachPrimitiveItsBytesAndReadsNoneThatIsCut) {
  for (const PrimitiveRow& row : kPrimitives) {
    OdDbFileWriter writer(nullptr);
    row.write(writer);
    Bytes record;
    writer.assemble(record);
    Bytes expected = row.bytes;
    expected.insert(expected.begin(), 0);  // no references
    EXPECT_EQ(record, expected) << row.name;
    OdDbFileReader reader(record.data(), record.size(), nullptr, nullptr, nullptr);
    EXPECT_TRUE(row.readsBack(reader)) << row.name;
    EXPECT_EQ(reader.bytesLeft(), 0u) << row.name;
    for (std::size_t size = 1; size < record.size(); ++size) {
      OdDbFileReader cut(record.data(), size, nullptr, nullptr, nullptr);
      EXPECT_EQ(raisedBy([&] { row.readsBack(cut); }), eEndOfStream) << row.name << " " << size;
    }
  }
}

TEST(OdDbFileFiler, RefusesNumbersThatDoNotFit) {
  const auto read = [](Bytes fields, const std::function<void(OdDbDwgFiler&)>& primitive) {
    fields.insert(fields.begin(), 0);
    OdDbFileReader reader(fields.data(), fields.size(), nullptr, nullptr, nullptr);
    return raisedBy([&] { primitive(reader); });
  };
  const auto int16 = [](OdDbDwgFiler& f) { f.rdInt16(); };
  EXPECT_EQ(read({0xFE, 0xFF, 0x03}, int16), eOk) << "32767";
  EXPECT_EQ(read({0x80, 0x80, 0x04}, int16), eCorruptData) << "32768";
  EXPECT_EQ(read({0x81, 0x80, 0x04}, int16), eCorruptData) << "-32769";
  EXPECT_EQ(read({0x80, 0x80, 0x80, 0x80, 0x10}, [](auto& f) { f.rdInt32(); }), eCorruptData);
  Bytes longest(9, 0xFF);
  longest.push_back(0x02);
  EXPECT_EQ(read(longest, [](auto& f) { f.rdInt64(); }), eCorruptData) << "65 bits";
  EXPECT_EQ(read(Bytes(11, 0x80), [](auto& f) { f.rdInt64(); }), eCorruptData) << "no end";
  EXPECT_EQ(read({3, 'a', 'b'}, [](auto& f) { f.rdString(); }), eEndOfStream);
  // Three items of two bytes do not fit into five bytes.
  const auto count = [](auto& f) { f.rdCount(2); };
  EXPECT_EQ(read({6, 0, 0, 0, 0, 0, 0}, count), eOk);
  EXPECT_EQ(read({6, 0, 0, 0, 0, 0}, count), eCorruptData);
  EXPECT_EQ(read({1, 0, 0, 0, 0, 0}, count), eCorruptData) << "-1";
}

TEST(OdDbFileFiler, KeepsHowEachIdRefers) {
  Ids ids;
  OdDbFileWriter writer(nullptr);
  writer.wrSoftPointerId(ids(0x10));
  writer.wrHardPointerId(ids(0x11));
  writer.wrSoftOwnershipId(ids(0x12));
  writer.wrHardOwnershipId(ids(0x13));
  writer.wrHardOwnershipId(OdDbObjectId());
  Bytes record;
  writer.assemble(record);
  EXPECT_EQ(record, (Bytes{4, 0x40, 0x45, 0x4A, 0x4F, 1, 2, 3, 4, 0}));

  OdDbFileReader reader(record.data(), record.size(), nullptr, &Ids::resolve, &ids);
  EXPECT_EQ(reader.rdHardPointerId(), ids(0x10)) << "pointers are read by both primitives";
  EXPECT_EQ(reader.rdSoftPointerId(), ids(0x11));
  EXPECT_EQ(raisedBy([&] { (void)reader.rdHardOwnershipId(); }), eCorruptData);
  EXPECT_EQ(reader.rdHardOwnershipId(), ids(0x13)) << "a refused id is passed over";
  EXPECT_EQ(reader.greatestReferenceRead(), 4u);
  EXPECT_TRUE(reader.rdSoftOwnershipId().isNull());

  record[5] = 5;
  OdDbFileReader beyond(record.data(), record.size(), nullptr, &Ids::resolve, &ids);
  EXPECT_EQ(raisedBy([&] { (void)beyond.rdSoftPointerId(); }), eCorruptData);
  const Bytes hostile = {4, 0x40, 0x45};
  EXPECT_EQ(raisedBy([&] { OdDbFileReader(hostile.data(), 3, nullptr, nullptr, nullptr); }),
            eCorruptData);
  OdDbFileWriter great(nullptr);
  great.wrSoftPointerId(ids(OdUInt64{1} << 62));
  EXPECT_EQ(raisedBy([&] { great.assemble(record); }), eLimitExceeded);
}

TEST(OdDbFileFiler, SeeksWithinTheFieldsOnly) {
  const Bytes record = {1, 0x40, 7, 8, 9};
  OdDbFileReader reader(record.data(), record.size(), nullptr, nullptr, nullptr);
  reader.seek(-1, OdDb::kSeekFromEnd);
  EXPECT_EQ(reader.rdUInt8(), 9);
  EXPECT_EQ(raisedBy([&] { reader.seek(1, OdDb::kSeekFromCurrent); }), eEndOfStream);
  EXPECT_EQ(raisedBy([&] { reader.seek(-1, OdDb::kSeekFromStart); }), eEndOfStream);
  reader.seek(-2, OdDb::kSeekFromCurrent);
  EXPECT_EQ(reader.rdUInt8(), 8);
  EXPECT_EQ(reader.tell(), 2u);
}

TEST(OdDbMemoryFiler, ReadsItsPartOfTheBufferAndTranslatesIds) {
  Ids ids;
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler(OdDbDwgFiler::kUndoFiler, buffer).wrString(L"earlier record");
  const std::size_t begin = buffer.bytes.size();
  std::vector<OdDbFiledId> collected;
  OdDbMemoryFiler filer(OdDbDwgFiler::kDeepCloneFiler, buffer);
  filer.collectIds(&collected);
  for (const PrimitiveRow& row : kPrimitives) row.write(filer);
  filer.wrHardOwnershipId(ids(1));
  filer.wrSoftPointerId(OdDbObjectId());

  filer.startReading(begin, 1);
  filer.setIdTranslator(
      [](void* context, OdDbObjectId id, OdDb::ReferenceType type) {
        return type == OdDb::kHardOwnershipRef ? Ids::resolve(context, 2) : id;
      },
      &ids);
  for (const PrimitiveRow& row : kPrimitives) EXPECT_TRUE(row.readsBack(filer)) << row.name;
  EXPECT_EQ(filer.rdHardOwnershipId(), ids(2));
  EXPECT_TRUE(filer.rdSoftPointerId().isNull());
  EXPECT_EQ(filer.bytesLeft(), 0u);
  EXPECT_EQ(raisedBy([&] { filer.rdUInt8(); }), eEndOfStream);
  ASSERT_EQ(collected.size(), 1u);
  EXPECT_EQ(collected[0].type, OdDb::kHardOwnershipRef);

  filer.startReading(begin, buffer.strings.size(), begin + 1);
  EXPECT_TRUE(filer.rdBool());
  EXPECT_EQ(raisedBy([&] { filer.rdInt8(); }), eEndOfStream) << "the given end";
  filer.startReading(0, buffer.strings.size());
  EXPECT_EQ(raisedBy([&] { filer.rdString(); }), eCorruptData) << "no such string";
}

TEST(OdDbIdFiler, KeepsIdsAndCountsPrimitives) {
  Ids ids;
  OdDbIdFiler filer;
  for (const PrimitiveRow& row : kPrimitives) row.write(filer);
  filer.wrBytes("abc", 3);
  filer.wrSoftOwnershipId(ids(5));
  filer.wrHardPointerId(OdDbObjectId());
  EXPECT_EQ(filer.tell(), kPrimitives.size() + 3);
  ASSERT_EQ(filer.ids().size(), 1u);
  EXPECT_EQ(filer.ids()[0].id, ids(5));
  EXPECT_EQ(filer.ids()[0].type, OdDb::kSoftOwnershipRef);
  EXPECT_EQ(raisedBy([&] { filer.rdInt32(); }), eNotImplementedForClass);
}

}  // namespace
