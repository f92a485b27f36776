// Tests of making, copying and swapping of blocks, and of effective scales.
#include "vdm_db/cloning/vdm_block_utils.h"

#include "platform/db/dictionary.h"
#include "platform/db/selection_filter.h"
#include "tests/references/reference_testing.h"

/// An entity that notes the host's mode of copying parameters when it is cloned, and fails then
/// when it is told to.
class ModeProbe : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(ModeProbe)
  static int seen;
  static bool fails;

  OdDbObjectPtr subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                             bool isPrimary) const override {
    seen = database()->appServices()->parameterCopyMode();
    if (fails) throw OdError(eGeneralFailure);
    return OdDbEntity::subDeepClone(mapping, owner, isPrimary);
  }
};
int ModeProbe::seen = 0;
bool ModeProbe::fails = false;
OD_RX_DEFINE_DB(ModeProbe, OdDbEntity, L"ModeProbe", 33, 55, 0, L"MODEPROBE", L"tests")

namespace {

/// Takes lines only.
class OnlyLines : public OdDbSelectionFilter {
 public:
  [[nodiscard]] bool accepts(const OdDbEntity* entity) const override {
    return entity->isKindOf(OdDbLine::desc());
  }
};

class VdmBlockUtilsTest : public ReferenceTest {
 protected:
  static void SetUpTestSuite() {
    ReferenceTest::SetUpTestSuite();
    ModeProbe::rxInit();
  }
  static void TearDownTestSuite() {
    ModeProbe::rxUninit();
    ReferenceTest::TearDownTestSuite();
  }

  /// A line, an erased line, a view's reference and a carrier that points to the line.
  OdDbObjectId addSource(OdDb::UnitsValue units) {
    const OdDbObjectId block = addBlock(m_drawing, L"SOURCE");
    m_line = addLine(block);
    edit<OdDbEntity>(addLine(block))->erase();
    const OdDbViewRepBlockReferencePtr view = OdDbViewRepBlockReference::createObject();
    view->setBlockTableRecord(addBlock(m_drawing, L"VIEW"));
    addTo(block, view);
    VdmCompoundObjectId path;
    path.setTopId(m_line);
    addCarrier(block, path);
    const OdDbBlockTableRecordPtr record = edit<OdDbBlockTableRecord>(block);
    record->setBlockInsertUnits(units);
    record->setOrigin(OdGePoint3d(1, 2, 3));
    return block;
  }
  /// A reference to a block of these units.
  OdDbObjectId addReference(OdDb::UnitsValue units, const OdGeScale3d& scale) {
    const OdDbObjectId block = vdmu::createEmptyAnonymousBlock(m_drawing);
    edit<OdDbBlockTableRecord>(block)->setBlockInsertUnits(units);
    const OdDbObjectId reference = show(m_modelSpace, block);
    edit<OdDbBlockReference>(reference)->setScaleFactors(scale);
    return reference;
  }
  static OdDb::UnitsValue unitsOf(OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->blockInsertUnits();
  }
  static PathCarrierPtr carrierIn(OdDbObjectId block) {
    return open<PathCarrier>(open<OdDbBlockTableRecord>(block)->entityIds().last());
  }

  OdDbObjectId m_line;
  OdDbIdMappingPtr m_mapping;
};

TEST_F(VdmBlockUtilsTest, AnonymousBlocksTakeTheDrawingsUnits) {
  m_drawing->setINSUNITS(OdDb::kUnitsInches);
  const OdDbObjectId id = vdmu::createEmptyAnonymousBlock(m_drawing);
  EXPECT_EQ(unitsOf(id), OdDb::kUnitsInches);
  EXPECT_TRUE(vdmu::canBeMCADAnonymousBlock(open<OdDbBlockTableRecord>(id)));
  EXPECT_FALSE(vdmu::canBeMCADAnonymousBlock(nullptr));
  const OdDbBlockTableRecordPtr named = OdDbBlockTableRecord::createObject();
  for (const wchar_t* name : {L"A*U", L"*D3", L"*u1"}) {
    named->setName(name);
    EXPECT_FALSE(vdmu::canBeMCADAnonymousBlock(named));
  }
}

TEST_F(VdmBlockUtilsTest, ClonesABlockWithoutViews) {
  const OdDbObjectId source = addSource(OdDb::kUnitsMeters);
  const OdDbObjectId copy = vdmu::cloneBlock(source, false, m_mapping);
  ASSERT_FALSE(copy.isNull());
  EXPECT_EQ(countEntities(copy), 2u);
  EXPECT_EQ(vdmu::findClone(*m_mapping, source), copy);
  EXPECT_EQ(carrierIn(copy)->path.topId(), vdmu::findClone(*m_mapping, m_line));
  EXPECT_EQ(unitsOf(copy), OdDb::kUnitsMeters);
  EXPECT_EQ(open<OdDbBlockTableRecord>(copy)->origin(), OdGePoint3d(1, 2, 3));
  EXPECT_TRUE(vdmu::cloneBlock(OdDbObjectId::kNull, false, m_mapping).isNull());
}

TEST_F(VdmBlockUtilsTest, ParametersAreCopiedInModeThreeMeanwhile) {
  m_host.setParameterCopyMode(2);
  addTo(m_modelSpace, ModeProbe::createObject());
  ModeProbe::seen = 0;
  EXPECT_FALSE(vdmu::cloneBlock(m_modelSpace, false, m_mapping).isNull());
  EXPECT_EQ(ModeProbe::seen, 3);
  EXPECT_EQ(m_host.parameterCopyMode(), 2);
  const OdUInt32 blocks = open<OdDbBlockTable>(m_drawing->getBlockTableId())->numRecords();
  ModeProbe::fails = true;
  m_mapping = nullptr;
  EXPECT_TRUE(vdmu::cloneBlock(m_modelSpace, false, m_mapping).isNull());
  ModeProbe::fails = false;
  EXPECT_EQ(m_host.parameterCopyMode(), 2);
  EXPECT_EQ(open<OdDbBlockTable>(m_drawing->getBlockTableId())->numRecords(), blocks);
}

TEST_F(VdmBlockUtilsTest, ClonesWhatTheFilterTakesIntoABlock) {
  const OdDbObjectId source = addSource(OdDb::kUnitsMeters);
  const OdDbObjectId target = addBlock(m_drawing, L"TARGET");
  OnlyLines lines;
  EXPECT_EQ(vdmu::cloneBlock(source, target, false, m_mapping, &lines), eOk);
  EXPECT_EQ(countEntities(target), 1u);
  EXPECT_EQ(unitsOf(target), OdDb::kUnitsMeters);
  m_drawing->setINSUNITS(OdDb::kUnitsFeet);
  m_mapping = nullptr;
  EXPECT_EQ(vdmu::cloneBlock(m_modelSpace, target, false, m_mapping, nullptr), eOk);
  EXPECT_EQ(unitsOf(target), OdDb::kUnitsFeet);
  EXPECT_EQ(raisedBy([&] { (void)vdmu::cloneBlock(m_line, target, false, m_mapping, nullptr); }),
            eNotThatKindOfClass);
}

TEST_F(VdmBlockUtilsTest, WritesABlockToAnotherDrawing) {
  const OdDbObjectId source = addSource(OdDb::kUnitsMeters);
  const OdDbDatabasePtr other = m_host.createDatabase();
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcWblkObjects);
  const OdDbObjectId copy = vdmu::wblockBlock(source, other, false, m_mapping, OdDbObjectId::kNull);
  ASSERT_FALSE(copy.isNull());
  EXPECT_EQ(copy.database(), other.get());
  EXPECT_EQ(countEntities(copy), 2u);
  EXPECT_EQ(vdmu::findClone(*m_mapping, source), copy);
  EXPECT_EQ(carrierIn(copy)->path.topId(), vdmu::findClone(*m_mapping, m_line));
  EXPECT_EQ(unitsOf(copy), OdDb::kUnitsMeters);
  const OdDbObjectId space = other->getModelSpaceId();
  EXPECT_EQ(vdmu::wblockBlock(source, nullptr, false, nullptr, space), space);
  EXPECT_EQ(countEntities(space), 2u);
}

TEST_F(VdmBlockUtilsTest, SwappingMovesEntitiesAndUndoesWhole) {
  const OdDbObjectId source = addSource(OdDb::kUnitsMeters);
  const OdDbObjectId other = addBlock(m_drawing, L"OTHER");
  const OdDbObjectId line = addLine(other);
  m_drawing->startUndoRecord();
  EXPECT_EQ(vdmu::swapBlocksContent(source, other), eOk);
  EXPECT_EQ(m_line.ownerId(), other);
  EXPECT_EQ(line.ownerId(), source);
  EXPECT_EQ(countEntities(source), 1u);
  EXPECT_EQ(countEntities(other), 3u);
  EXPECT_EQ(m_drawing->undo(), eOk);
  EXPECT_EQ(m_line.ownerId(), source);
  EXPECT_EQ(countEntities(source), 3u);
  EXPECT_EQ(vdmu::swapBlocksContent(source, m_line), eWrongObjectType);
  show(source, other);  // would show itself in the other block
  EXPECT_EQ(vdmu::swapBlocksContent(source, other), eCircularReference);
  EXPECT_EQ(countEntities(source), 4u);
  EXPECT_EQ(line.ownerId(), other);
}

TEST_F(VdmBlockUtilsTest, OwnersLeadToTheBlock) {
  const OdDbObjectId line = addLine(m_modelSpace);
  const OdDbObjectId dictionary = edit<OdDbEntity>(line)->createExtensionDictionary();
  EXPECT_EQ(vdmu::getOwningBlock(dictionary), m_modelSpace);
  EXPECT_EQ(vdmu::getOwningBlock(m_modelSpace), m_modelSpace);
  EXPECT_TRUE(vdmu::getOwningBlock(m_drawing->getNamedObjectsDictionaryId()).isNull());
  EXPECT_TRUE(vdmu::getOwningBlock(OdDbObjectId::kNull).isNull());
}

TEST_F(VdmBlockUtilsTest, EffectiveScaleLeavesUnitsOut) {
  m_drawing->setINSUNITS(OdDb::kUnitsMillimeters);
  const struct {
    OdDb::UnitsValue units;
    double factor;
    OdResult result;
    double effective;
  } kRows[] = {
      {OdDb::kUnitsInches, 25.4, eOk, 1.0},
      {OdDb::kUnitsMillimeters, 3.0, eOk, 3.0},
      {OdDb::kUnitsUndefined, 2.0, eInvalidInput, 0.0},
      {OdDb::kUnitsMillimeters, 1e-11, eInvalidInput, 0.0},
      {OdDb::kUnitsMillimeters, -2e-10, eOk, -2e-10},
  };
  for (const auto& row : kRows) {
    const OdDbObjectId reference = addReference(row.units, OdGeScale3d(row.factor, 5.0, 5.0));
    OdGeScale3d scale(0.0);
    EXPECT_EQ(vdmu::getEffectiveBlockRefScale(reference, scale), row.result);
    EXPECT_DOUBLE_EQ(scale.sx, row.effective);
  }
  OdGeScale3d scale;
  EXPECT_EQ(vdmu::getEffectiveBlockRefScale(addLine(m_modelSpace), scale), eWrongObjectType);
}

TEST_F(VdmBlockUtilsTest, SettingTheEffectiveScaleConverts) {
  m_drawing->setINSUNITS(OdDb::kUnitsMillimeters);
  const OdDbObjectId inches = addReference(OdDb::kUnitsInches, OdGeScale3d());
  EXPECT_EQ(vdmu::setEffectiveBlockRefScale(inches, OdGeScale3d(2.0, 1.0, 1.0)), eOk);
  EXPECT_DOUBLE_EQ(open<OdDbBlockReference>(inches)->scaleFactors().sx, 50.8);
  EXPECT_EQ(vdmu::setEffectiveBlockRefScale(inches, OdGeScale3d(1e-12, 1.0, 1.0)), eInvalidInput);
  EXPECT_DOUBLE_EQ(open<OdDbBlockReference>(inches)->scaleFactors().sx, 50.8);
  const OdDbObjectId unitless = addReference(OdDb::kUnitsUndefined, OdGeScale3d());
  EXPECT_EQ(vdmu::setEffectiveBlockRefScale(unitless, OdGeScale3d(2.0)), eOk);
  EXPECT_EQ(open<OdDbBlockReference>(unitless)->scaleFactors(), OdGeScale3d(2.0));
  EXPECT_EQ(vdmu::setEffectiveBlockRefScale(m_modelSpace, OdGeScale3d(2.0)), eWrongObjectType);
}

}  // namespace
