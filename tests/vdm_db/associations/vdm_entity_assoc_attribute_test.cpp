// Tests of the association attribute: its bytes by hand, damage, refusals, and the hooks.
#include "vdm_db/associations/vdm_entity_assoc_attribute.h"

#include "tests/support/reference_testing.h"
#include "vdm_db/associations/vdm_assoc_utils.h"
#include "vdm_db/properties/vdm_flat_filer.h"

using vdm_assoc::EntityAssocAttribute;
using vdm_assoc::EntityAssocAttributePtr;

/// An attribute of another module, with a text.
class SectionAttribute : public EntityAssocAttribute {
 public:
  OD_RX_DECLARE_MEMBERS(SectionAttribute)

  OdString section;

  OdResult dwgInFields(OdDbDwgFiler* filer) override {
    const OdResult result = EntityAssocAttribute::dwgInFields(filer);
    if (result == eOk) section = filer->rdString();
    return result;
  }
  void dwgOutFields(OdDbDwgFiler* filer) const override {
    EntityAssocAttribute::dwgOutFields(filer);
    filer->wrString(section);
  }
};
OD_RX_DEFINE(SectionAttribute, EntityAssocAttribute, L"SectionAttribute")

namespace {

constexpr const wchar_t* kClass = L"EntityAssocAttribute";
using Bytes = std::vector<OdUInt8>;

const Bytes kRecord = {1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0x2A};

class EntityAssocAttributeTest : public VdmModule, public ReferenceTest {
 protected:
  EntityAssocAttributeTest() : m_line(addLine(m_modelSpace)) { SectionAttribute::rxInit(); }
  ~EntityAssocAttributeTest() override { SectionAttribute::rxUninit(); }

  // Extended data of the application: each chunk one record of code 1004.
  void putChunks(const std::vector<Bytes>& chunks) {
    m_drawing->newRegApp(L"VdmAssoc");
    const OdResBufPtr chain = OdResBuf::newRb(OdResBuf::kDxfRegAppName, OdString(L"VdmAssoc"));
    for (const Bytes& bytes : chunks) {
      OdBinaryData data;
      for (const OdUInt8 byte : bytes) data.append(byte);
      const OdResBufPtr chunk = OdResBuf::newRb(OdResBuf::kDxfXdBinaryChunk);
      chunk->setBinaryChunk(data);
      chain->last()->setNext(chunk);
    }
    if (chunks.empty()) {
      chain->setNext(OdResBuf::newRb(OdResBuf::kDxfXdAsciiString, OdString(L"text")));
    }
    edit<OdDbEntity>(m_line)->setXData(chain);
  }
  Bytes bytesOfRecord() {
    const OdResBufPtr chain = open<OdDbEntity>(m_line)->xData(L"VdmAssoc");
    if (chain.isNull() || chain->next().isNull()) return {};
    const OdBinaryData& data = chain->next()->getBinaryChunk();
    return Bytes(data.begin(), data.end());
  }
  EntityAssocAttributePtr attributeOf(OdDbObjectId id, const OdString& className = kClass) {
    return EntityAssocAttribute::readAttributeFromEntity(className, open<OdDbEntity>(id));
  }

  OdDbObjectId m_line;
};

TEST_F(EntityAssocAttributeTest, ItsBytesAreAsWrittenByHand) {
  EXPECT_EQ(EntityAssocAttribute::createObject(open<OdDbEntity>(m_line), 0x12A)->writeXData(), eOk);
  EXPECT_EQ(bytesOfRecord(), kRecord);
  Bytes later = kRecord;
  later[4] = 5;
  putChunks({Bytes(later.begin(), later.begin() + 6), Bytes(later.begin() + 6, later.end())});
  const EntityAssocAttributePtr read = attributeOf(m_line);
  ASSERT_FALSE(read.isNull());
  EXPECT_EQ(read->depHandle(), OdDbHandle(0x12A));
  EXPECT_EQ(read->entity()->objectId(), m_line);
  EXPECT_EQ(read->storedMajorVersion(), 1);
  EXPECT_EQ(read->minorVersionRead(), 5);
  EXPECT_EQ(read->minorVersion(), 2);
  EXPECT_TRUE(attributeOf(addLine(m_modelSpace)).isNull());
  EXPECT_TRUE(EntityAssocAttribute::readAttributeFromEntity(kClass, {}).isNull());
}

TEST_F(EntityAssocAttributeTest, DamageGivesNone) {
  Bytes oldMajor = kRecord;
  oldMajor[0] = 0;
  Bytes negativeMajor = kRecord;
  negativeMajor[3] = 0x80;
  Bytes noHandle = kRecord;
  noHandle[14] = noHandle[15] = 0;
  const std::pair<Bytes, OdResult> kRows[] = {
      {oldMajor, eNotApplicable}, {negativeMajor, eNotApplicable}, {noHandle, eNullHandle}};
  for (const auto& [bytes, result] : kRows) {
    putChunks({bytes});
    EXPECT_TRUE(attributeOf(m_line).isNull());
    const OdResBufPtr chain = open<OdDbEntity>(m_line)->xData(L"VdmAssoc");
    EXPECT_EQ(EntityAssocAttribute::createObject()->convertFromResBuf(chain->next().get()), result);
    EXPECT_EQ(EntityAssocAttribute::createObject()->convertFromResBuf(chain), eNoBinaryData);
  }
  for (std::size_t size = 0; size < kRecord.size(); ++size) {
    putChunks({Bytes(kRecord.begin(), kRecord.begin() + static_cast<std::ptrdiff_t>(size))});
    EXPECT_TRUE(attributeOf(m_line).isNull()) << size;
  }
  putChunks({});
  EXPECT_TRUE(attributeOf(m_line).isNull());
  putChunks({kRecord});
  for (const wchar_t* name : {L"", L"OdDbLine", L"VdmFeaturePE", L"NoSuchClass"}) {
    EXPECT_TRUE(attributeOf(m_line, name).isNull()) << OdString(name).utf8();
  }
}

TEST_F(EntityAssocAttributeTest, WritingRefusesInItsOrder) {
  const EntityAssocAttributePtr attribute = EntityAssocAttribute::createObject({}, OdDbHandle());
  EXPECT_EQ(attribute->writeXData(), 24);
  attribute->setEntity(OdDbLine::createObject());
  EXPECT_EQ(attribute->writeXData(), 21);
  attribute->setEntity(open<OdDbEntity>(m_line));
  EXPECT_EQ(attribute->writeXData(), 106);
  EXPECT_FALSE(open<OdDbEntity>(m_line)->hasXData());
}

TEST_F(EntityAssocAttributeTest, DerivedFieldsFollowUndoAndRefuseWhatCannotBeKept) {
  const OdSmartPtr<SectionAttribute> attribute = SectionAttribute::createObject();
  attribute->setEntity(open<OdDbEntity>(m_line));
  attribute->setDepHandle(0x10);
  attribute->section = L"A-A";
  m_drawing->startUndoRecord();
  ASSERT_EQ(attribute->writeXData(), eOk);
  for (const std::size_t size : {15982u, 40000u}) {  // with the fields before it 16000; unreadable
    attribute->section = OdString(std::wstring(size, L'x').c_str());
    EXPECT_EQ(attribute->writeXData(), 417) << size;
  }
  const OdSmartPtr<SectionAttribute> read =
      SectionAttribute::cast(attributeOf(m_line, L"SectionAttribute"));
  ASSERT_FALSE(read.isNull());
  EXPECT_EQ(read->section, L"A-A");
  read->setEntity({});
  attribute->setEntity({});
  EXPECT_EQ(m_drawing->undo(), eOk);
  EXPECT_TRUE(attributeOf(m_line).isNull());
}

TEST_F(EntityAssocAttributeTest, OperationsOfTheOtherModuleAreItsOwn) {
  OdArray<OdDbFullSubentPath> paths;
  EXPECT_EQ(VdmAssocUtils::swapAssocHandles(m_line, m_line), eModuleNotLoaded);
  EXPECT_EQ(VdmAssocUtils::markTrackingEnts(OdArray<OdDbObjectId>{m_line}), eModuleNotLoaded);
  VdmAssocUtils::setImplMarkTrackingEntsByIds(
      [](const OdArray<OdDbObjectId>& ids) { return ids.size() == 1 ? eOk : eInvalidInput; });
  VdmAssocUtils::setImplGetAcisEntsFSPMethod(
      [](const OdArray<OdDbFullSubentPath>& from, OdArray<OdDbFullSubentPath>& to) {
        to = from;
        return eOk;
      });
  EXPECT_EQ(VdmAssocUtils::markTrackingEnts(OdArray<OdDbObjectId>{m_line}), eOk);
  EXPECT_EQ(VdmAssocUtils::markTrackingEnts(paths), eModuleNotLoaded);
  EXPECT_EQ(VdmAssocUtils::getAcisEntsFSP({OdDbFullSubentPath(m_line, {})}, paths), eOk);
  EXPECT_EQ(paths.size(), 1u);
  VdmAssocUtils::setImplMarkTrackingEntsByIds(nullptr);
  VdmAssocUtils::setImplGetAcisEntsFSPMethod(nullptr);
  EXPECT_EQ(VdmAssocUtils::markTrackingEnts(OdArray<OdDbObjectId>{m_line}), eModuleNotLoaded);
}

}  // namespace
