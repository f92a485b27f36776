// Tests of the stored form of bags: bytes, versions, sparse filing, damage, every filer.
#include <gtest/gtest.h>

#include "platform/base/error.h"
#include "platform/filer/dxf_text_filer.h"
#include "platform/filer/file_filer.h"
#include "platform/filer/memory_filer.h"
#include "tests/vdm_db/properties/property_testing.h"
#include "vdm_db/properties/vdm_dwg_utils.h"
#include "vdm_db/properties/vdm_property_mapping.h"
#include "vdm_db/properties/vdm_trans_dwg_filer.h"

using namespace property_testing;

namespace {

// Fills a bag with what a record of a drawing file gives back.
void passThroughFile(const VdmProperties& source, VdmProperties& bag) {
  OdDbFileWriter writer(nullptr);
  source.dwgOutFields(&writer);
  std::vector<OdUInt8> record;
  writer.assemble(record);
  const auto resolver = [](void*, OdUInt64) { return OdDbObjectId(); };
  OdDbFileReader reader(record.data(), record.size(), nullptr, resolver, nullptr);
  EXPECT_EQ(bag.dwgInFields(&reader), eOk);
}

TEST(VdmPropertiesWire, WritesTheBytesOfEachForm) {
  const OdString key("k");
  const auto of = [](const auto& value) { return VdmPropertyData::create(value); };
  const struct {
    const char* name;
    VdmPropertyDataPtr value;
    const char* hex;  // behind count 1 and key "k"
  } rows[] = {
      {"string", of(OdString(L"\u00E9")), "02 02 00 C3 A9"},
      {"long", of(OdLong{-2}), "03 FE FF FF FF"},
      {"double", of(1.0), "04 00 00 00 00 00 00 F0 3F"},
      {"bool", of(true), "05 01"},
      {"int8", of(static_cast<signed char>(-1)), "06 FF"},
      {"handle", of(OdDbHandle(0x0102030405060708u)), "07 01 02 03 04 05 06 07 08"},
      {"typed id", of(OdDbTypedId(OdDbObjectId(), OdDb::kHardPointerRef)), "08 01"},
      {"array", of(VdmLongArray{1}), "09 03 01 00 00 00 01 00 00 00"},
      {"nested", of(VdmPropertyArray{of(true), VdmPropertyDataPtr()}),
       "09 01 02 00 00 00 05 01 00"},
      {"map", of(std::map<bool, signed char>{{false, 7}, {true, 8}}),
       "0A 05 06 02 00 00 00 00 07 01 08"},
      {"blob", of(VdmBlob{'\x55'}), "0B 01 00 00 00 55"},
      {"empty blob", of(VdmBlob()), "0B 00 00 00 00"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    VdmProperties bag;
    bag.setProperty(key, row.value);
    const std::string expected = std::string("01 00 00 00 01 00 6B ") + row.hex;
    EXPECT_EQ(hexOf(flatOf(bag)), expected);
    VdmProperties read;
    ASSERT_EQ(readFlat(read, bytesOf(expected)), eOk);
    EXPECT_EQ(hexOf(flatOf(read)), expected);
  }
}

TEST(VdmPropertiesWire, CountsTheVersionEntry) {
  VdmProperties bag;
  EXPECT_EQ(hexOf(flatOf(bag)), "00 00 00 00");
  bag.setVersion(3);
  bag.setProperty(L"b", OdString("hi"));
  bag.setProperty(L"a", OdLong{7});
  const std::vector<char> bytes = flatOf(bag);
  EXPECT_EQ(hexOf(bytes),
            "03 00 00 00 04 00 5F 76 65 72 06 03 01 00 61 03 07 00 00 00 01 00 62 02 02 00 68 69");
  VdmProperties read;
  read.setVersion(3);
  ASSERT_EQ(readFlat(read, bytes), eOk);
  EXPECT_EQ(read.size(), 2u);
  EXPECT_FALSE(read.hasProperty(L"_ver"));
}

// What a bag reads from a drawing file may stay packed until it is asked for.
TEST(VdmPropertiesWire, UsesWhatAFileHeldLikeAnyValue) {
  const OdString longText(std::string(600, 'x'));
  VdmProperties source;
  source.setProperty(L"doubles", VdmDoubleArray{1.5, -2.5});
  source.setProperty(L"empty", OdString());
  source.setProperty(L"long text", longText);
  source.setProperty(L"none", VdmLongArray());
  source.setProperty(L"text", OdString(L"\u00E9t\u00E9"));
  const std::vector<char> flat = flatOf(source);
  OdString text;
  VdmLongArray longs;
  VdmDoubleArray doubles;

  VdmProperties bag;
  passThroughFile(source, bag);
  EXPECT_FALSE(bag.getProperty(L"text", longs));
  EXPECT_TRUE(bag.getProperty(L"none", longs) && longs.isEmpty());
  EXPECT_TRUE(bag.getProperty(L"empty", text) && text.isEmpty());
  EXPECT_EQ(flatOf(bag), flat);

  // Replaced, removed and outgrown while packed; what stays is what it was.
  passThroughFile(source, bag);
  EXPECT_TRUE(bag.setProperty(L"text", longText));
  EXPECT_TRUE(bag.removeProperty(L"empty"));
  for (OdLong i = 0; i < 100; ++i) bag.setProperty(OdString("z") + OdString(std::to_string(i)), i);
  EXPECT_TRUE(bag.getProperty(L"doubles", doubles) && doubles == VdmDoubleArray({1.5, -2.5}));
  EXPECT_TRUE(bag.getProperty(L"text", text) && text == longText);

  // Copies share the value objects that packed values become.
  passThroughFile(source, bag);
  VdmProperties copy(bag);
  EXPECT_TRUE(copy.setProperty(L"text", OdString("shared")));
  EXPECT_TRUE(bag.getProperty(L"text", text) && text == OdString("shared"));
}

TEST(VdmPropertiesWire, AcceptsVersionsByTheBagsOwn) {
  const struct {
    int own;
    const char* version;
    OdResult result;
  } rows[] = {{0, "06 01", eOk},
              {0, "06 02", eNotApplicable},
              {3, "06 03", eOk},
              {3, "06 04", eNotApplicable},
              {0, "03 01", eNotApplicable},
              {0, "06 FF", eOk}};
  for (const auto& row : rows) {
    VdmProperties bag;
    bag.setVersion(row.own);
    EXPECT_EQ(readFlat(bag, bytesOf(std::string("01 00 00 00 04 00 5F 76 65 72 ") + row.version)),
              row.result)
        << row.own << " reads " << row.version;
    EXPECT_EQ(bag.version(), row.own);
  }
}

TEST(VdmPropertiesWire, ReportsDamageByNumber) {
  const struct {
    const char* hex;
    OdResult result;
    OdUInt32 kept;
  } rows[] = {
      {"02 00 00 00 01 00 61 05 01 01 00 62 0C", eCorruptData, 1},        // unknown type
      {"02 00 00 00 01 00 61 05 01 01 00 62 01", eCorruptData, 1},        // nested value by itself
      {"02 00 00 00 01 00 61 05 01 01 00 62 09 0A", eCorruptData, 1},     // element type
      {"02 00 00 00 01 00 61 05 01 01 00 62 0A 01 02", eCorruptData, 1},  // key type
      {"02 00 00 00 00 00 05 01 01 00 61 05 01", eOk, 1},                 // empty key: skipped
      {"01 00 00 00 00 00 0C", eCorruptData, 0},                          // empty key, bad value
      {"FF FF FF FF", eOk, 0},                                            // nothing to read
      {"FF FF FF 7F 01 00 61 05 01", eCorruptData, 0},                    // more than there can be
  };
  for (const auto& row : rows) {
    VdmProperties bag;
    bag.setProperty(L"old", true);
    EXPECT_EQ(readFlat(bag, bytesOf(row.hex)), row.result) << row.hex;
    EXPECT_EQ(bag.size(), row.kept) << row.hex;
  }
}

TEST(VdmPropertiesWire, RefusesHostileCountsBeforeAllocating) {
  for (const char* value : {"09 04 FF FF FF 7F", "09 03 FF FF FF FF", "0A 02 03 FF FF FF 7F",
                            "0B FF FF FF 7F", "0B FF FF FF FF", "08 04", "02 FF FF"}) {
    VdmProperties bag;
    try {
      readFlat(bag, bytesOf(std::string("01 00 00 00 01 00 61 ") + value));
      ADD_FAILURE() << value;
    } catch (const OdError& error) {
      EXPECT_EQ(error.code(), eCorruptData) << value;
    }
    EXPECT_TRUE(bag.isEmpty());
  }
}

TEST(VdmPropertiesWire, LimitsNesting) {
  const auto nested = [](int depth) {
    VdmPropertyDataPtr value = VdmPropertyData::create(true);
    for (int i = 0; i < depth; ++i) value = VdmPropertyData::create(VdmPropertyArray{value});
    VdmProperties bag;
    bag.setProperty(L"a", value);
    return bag;
  };
  const std::vector<char> deepest = flatOf(nested(VdmPropertyData::kMaxNesting));
  VdmProperties bag;
  ASSERT_EQ(readFlat(bag, deepest), eOk);
  EXPECT_EQ(flatOf(bag), deepest);
  EXPECT_THROW(flatOf(nested(VdmPropertyData::kMaxNesting + 1)), OdError);
  // One more level around the value: type 9 of element type 1 with one element.
  std::vector<char> deeper = deepest;
  const std::vector<char> level = bytesOf("09 01 01 00 00 00");
  deeper.insert(deeper.begin() + 7, level.begin(), level.end());
  EXPECT_THROW(readFlat(bag, deeper), OdError);
}

// ---- Mapped properties

TEST(VdmPropertiesWire, FillsMappedMembersAndDropsTheRest) {
  VdmProperties source;
  source.setProperty(L"free", OdLong{1});
  source.setProperty(L"member", OdLong{2});
  source.setProperty(L"ids", VdmTypedIdArray());
  OdLong member = 0;
  OdDbObjectIdArray ids{OdDbObjectId()};
  VdmProperties bag;
  bag.mapProperty(L"member", &member);
  bag.mapProperty(L"ids", &ids, OdDb::kSoftPointerRef);
  bag.setProperty(L"old", true);
  ASSERT_EQ(readFlat(bag, flatOf(source)), eOk);
  EXPECT_EQ(member, 2);
  EXPECT_TRUE(ids.isEmpty());
  EXPECT_TRUE(bag.getProperty(L"member")->isMapped());
  EXPECT_EQ(flatOf(bag), flatOf(source));
}

TEST(VdmPropertiesWire, ReportsMappedMembersOfAnotherType) {
  OdLong number = 5;
  VdmDoubleArray array;
  std::map<OdString, OdString> map;
  const auto read = [&](const VdmPropertyDataPtr& filed, auto& variable) {
    VdmProperties source;
    source.setProperty(L"m", filed);
    VdmProperties bag;
    bag.mapProperty(L"m", &variable);
    return readFlat(bag, flatOf(source));
  };
  const AssertionLog log;
  EXPECT_EQ(read(VdmPropertyData::create(1.0), number), eCorruptData);
  EXPECT_EQ(read(VdmPropertyData::create(VdmLongArray{1}), array), eCorruptData);
  EXPECT_EQ(read(VdmPropertyData::create(std::map<OdString, bool>()), map), eCorruptData);
  EXPECT_EQ(number, 5);
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{
                "type == this->type()@vdm_db/vdm_properties:1450",
                "type == this->type() && subType == VdmPropertyTypeInfo<T>::Id"
                "@vdm_db/vdm_properties:1481",
                "type == this->type() && keyType == VdmPropertyTypeInfo<Key>::Id && "
                "valueType == VdmPropertyTypeInfo<Value>::Id@vdm_db/vdm_properties:1537"}));
}

TEST(VdmPropertiesWire, PassesReadValuesOnExceptMaps) {
  VdmProperties source;
  source.setProperty(L"array", VdmLongArray{1});
  source.setProperty(L"long", OdLong{2});
  source.setProperty(L"map", std::map<OdString, OdString>{{OdString("k"), OdString("v")}});
  std::string calls;
  VdmProperties bag;
  bag.mapProperty<VdmLongArray>(
      L"array", [] { return VdmLongArray(); }, [&](VdmLongArray) { calls += "array "; });
  bag.mapProperty<OdLong>(
      L"long", [] { return 0; }, [&](OdLong) { calls += "long "; });
  using Map = std::map<OdString, OdString>;
  bag.mapProperty<Map>(
      L"map", [] { return Map(); }, [&](Map) { calls += "map "; });
  ASSERT_EQ(readFlat(bag, flatOf(source)), eOk);
  EXPECT_EQ(calls, "array long ");
}

TEST(VdmPropertiesWire, SurvivesASetterThatChangesTheBag) {
  VdmProperties source;
  source.setProperty(L"a", OdLong{1});
  source.setProperty(L"b", OdLong{2});
  VdmProperties bag;
  bag.mapProperty<OdLong>(
      L"a", [] { return 0; }, [&](OdLong) { bag.setReferenceType(L"b", OdDb::kSoftPointerRef); });
  const AssertionLog log;
  EXPECT_EQ(readFlat(bag, flatOf(source)), eCorruptData);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"!val.isNull()@vdm_db/vdm_properties:798"});
}

// ---- Sparse filing

TEST(VdmPropertiesWire, LeavesOutDefaultsWhenSparse) {
  OdLong defaulted = 5;
  double changed = 2.0;
  VdmProperties bag(VdmProperties::kSparse);
  bag.mapProperty(L"changed", &changed, 1.0);
  bag.mapProperty(L"defaulted", &defaulted, 5);
  bag.setProperty(L"free", true);
  const std::vector<char> bytes = flatOf(bag);
  EXPECT_EQ(bytes[0], 2);
  defaulted = 9;
  changed = 0.0;
  ASSERT_EQ(readFlat(bag, bytes), eOk);
  EXPECT_EQ(defaulted, 5);
  EXPECT_EQ(changed, 2.0);
  // Without a default the key must be there.
  bool required = false;
  bag.mapProperty(L"required", &required);
  EXPECT_EQ(readFlat(bag, bytes), eCorruptData);
}

// ---- Every filer

TEST(VdmPropertiesWire, PassesThroughEveryFiler) {
  const VdmProperties bag = fullBag();
  const std::vector<char> flat = flatOf(bag);
  VdmProperties read;
  ASSERT_EQ(readFlat(read, flat), eOk);
  EXPECT_EQ(flatOf(read), flat);
  passThroughFile(bag, read);
  EXPECT_EQ(flatOf(read), flat);

  OdDbTextDxfFiler dxf;
  TransDwgFiler translator(&dxf);
  bag.dwgOutFields(&translator);
  OdDbTextDxfFiler dxfBack(dxf.text(), nullptr);
  TransDwgFiler translatorBack(&dxfBack);
  ASSERT_EQ(read.dwgInFields(&translatorBack), eOk);
  EXPECT_EQ(flatOf(read), flat);
}

TEST(VdmPropertiesWire, FailsCleanlyOnEveryTruncation) {
  const std::vector<char> flat = flatOf(fullBag());
  for (std::size_t size = 0; size < flat.size(); ++size) {
    VdmProperties bag;
    try {
      const OdResult result =
          readFlat(bag, std::vector<char>(flat.begin(), flat.begin() + static_cast<int>(size)));
      EXPECT_EQ(result, eCorruptData) << size;
    } catch (const OdError& error) {
      EXPECT_TRUE(error.code() == eEndOfStream || error.code() == eCorruptData) << size;
    }
  }
}

TEST(VdmPropertiesWire, MarksDxfWithWhatItsReaderRefuses) {
  VdmProperties bag;
  bag.setProperty(L"a", OdLong{1});
  OdDbTextDxfFiler written;
  bag.dxfOutFields(&written);
  OdDbTextDxfFiler back(written.text(), nullptr);
  ASSERT_EQ(back.nextItem(), 280);
  EXPECT_EQ(back.rdUInt8(), 255);
  back.rewind();
  EXPECT_EQ(bag.dxfInFields(&back), eNotApplicable);
  // Behind the mark that the reader takes, the same groups are a bag.
  OdDbTextDxfFiler accepted;
  accepted.wrUInt8(280, 1);
  TransDwgFiler translator(&accepted);
  bag.dwgOutFields(&translator);
  OdDbTextDxfFiler acceptedBack(accepted.text(), nullptr);
  VdmProperties read;
  EXPECT_EQ(read.dxfInFields(&acceptedBack), eOk);
  EXPECT_EQ(flatOf(read), flatOf(bag));
}

TEST(TransDwgFiler, GivesEachKindOfReferenceItsGroup) {
  OdDbIdRecord idRecord;
  idRecord.handle = 0x2A;
  const OdDbObjectId id(&idRecord);
  OdDbTextDxfFiler written;
  TransDwgFiler writer(&written);
  writer.wrSoftPointerId(id);
  writer.wrHardPointerId(id);
  writer.wrSoftOwnershipId(id);
  writer.wrHardOwnershipId(id);
  writer.wrHardOwnershipId(id);
  EXPECT_EQ(written.text(), "330\n2A\n340\n2A\n350\n2A\n360\n2A\n360\n2A\n");

  const auto resolver = [](void* context, const OdDbHandle& handle) {
    return handle == OdDbHandle(0x2A) ? OdDbObjectId(static_cast<OdDbIdRecord*>(context))
                                      : OdDbObjectId();
  };
  OdDbTextDxfFiler back(written.text(), nullptr, resolver, &idRecord);
  TransDwgFiler reader(&back);
  EXPECT_EQ(reader.rdSoftPointerId(), id);
  EXPECT_EQ(reader.rdHardPointerId(), id);
  EXPECT_EQ(reader.rdSoftOwnershipId(), id);
  EXPECT_EQ(reader.rdHardOwnershipId(), id);
  EXPECT_TRUE(reader.rdSoftOwnershipId().isNull()) << "the group of another kind";
}

// ---- Marks, id arrays, the old map

TEST(VdmDwgUtils, MarksEveryFilerButFiles) {
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler file(OdDbDwgFiler::kFileFiler, buffer);
  vdmu::wrMark(&file, 7);
  EXPECT_TRUE(buffer.bytes.empty());
  vdmu::rdMark(&file, 8);
  OdDbMemoryFiler undo(OdDbDwgFiler::kUndoFiler, buffer);
  vdmu::wrMark(&undo, 7);
  undo.startReading(0, 0);
  vdmu::rdMark(&undo, 7);
  undo.startReading(0, 0);
  try {
    vdmu::rdMark(&undo, 8);
    ADD_FAILURE();
  } catch (const OdError& error) {
    EXPECT_EQ(error.description(), OdString("Corrupted dwg stream: wrong mark found in dbFiler. "
                                            "Application can be unstable"));
  }
}

TEST(VdmDwgUtils, ReadsIdArraysWithoutNullIds) {
  OdDbIdRecord first, second;
  OdDbObjectIdArray ids;
  for (OdDbIdRecord* record : {&first, static_cast<OdDbIdRecord*>(nullptr), &second})
    ids.append(OdDbObjectId(record));
  OdDbFilerBuffer buffer;
  std::vector<OdDbFiledId> filed;
  OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer);
  filer.collectIds(&filed);
  vdmu::writeHardOwnershipIdArray(&filer, ids);
  vdmu::writeSoftPointerIdArray(&filer, ids);
  ASSERT_EQ(filed.size(), 4u);
  EXPECT_EQ(filed[1].type, OdDb::kHardOwnershipRef);
  EXPECT_EQ(filed[2].type, OdDb::kSoftPointerRef);
  ids.removeAt(1);
  OdDbObjectIdArray read;
  filer.startReading(0, 0);
  vdmu::readHardOwnershipIdArray(&filer, read);
  EXPECT_EQ(read, ids);
  read.append(OdDbObjectId(&first));
  vdmu::readSoftPointerIdArray(&filer, read);
  EXPECT_EQ(read, ids) << "what the array held is replaced";
}

TEST(VdmDwgUtils, ReadsTheOldMapOfStrings) {
  const char* texts[] = {"a",
                         "1",
                         "",
                         "skipped",
                         "AngleThirdArgOrientation",
                         "Negative",
                         "AngleFirstArgOrientation",
                         "anything"};
  VdmFlatFiler filer;
  filer.clear()->wrInt32(4);
  for (const char* text : texts) filer.wrString(OdString(text));
  filer.seek(0, OdDb::kSeekFromStart);
  OdString text;
  VdmProperties bag;
  bag.setProperty(L"gone", true);
  EXPECT_EQ(vdmu::dwgInOldPropertyMap(&filer, bag), eOk);
  EXPECT_EQ(bag.size(), 2u);
  EXPECT_TRUE(bag.getProperty(L"a", text) && text == OdString("1"));
  EXPECT_TRUE(bag.getProperty(L"AngleArgsOrientation", text) && text == OdString("++-"));

  filer.clear()->wrInt32(2);
  for (const char* part : {"b", "2", "c"}) filer.wrString(OdString(part));
  filer.seek(0, OdDb::kSeekFromStart);
  EXPECT_EQ(vdmu::dwgInOldPropertyMap(&filer, bag), eCorruptData) << "it ends within a pair";
  EXPECT_TRUE(bag.hasProperty(L"b"));
}

}  // namespace
