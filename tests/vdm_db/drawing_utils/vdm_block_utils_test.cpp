// Tests of making, copying and swapping of blocks, of effective scales and of reactors.
#include "vdm_db/drawing_utils/vdm_block_utils.h"

#include "platform/db/dictionary.h"
#include "tests/support/array_action.h"
#include "tests/support/reference_testing.h"
#include "vdm_db/drawing_utils/vdm_assoc_array_utils.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"

namespace {

class VdmBlockUtilsTest : public ReferenceTest {
 protected:
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
  using ReferenceTest::addReference;
  /// A reference to a block of these units.
  OdDbObjectId addReference(OdDb::UnitsValue units, const OdGeScale3d& scale) {
    const OdDbObjectId block = vdmu::createEmptyAnonymousBlock(m_drawing);
    EXPECT_EQ(unitsOf(block), m_drawing->getINSUNITS());
    edit<OdDbBlockTableRecord>(block)->setBlockInsertUnits(units);
    const OdDbObjectId reference = addReference(m_modelSpace, block);
    edit<OdDbBlockReference>(reference)->setScaleFactors(scale);
    return reference;
  }
  static OdDb::UnitsValue unitsOf(OdDbObjectId block) {
    return open<OdDbBlockTableRecord>(block)->blockInsertUnits();
  }
  /// A copy of addSource() without the view, with a path to the copied line.
  void expectCopy(OdDbObjectId source, OdDbObjectId copy) {
    ASSERT_FALSE(copy.isNull());
    EXPECT_EQ(countEntities(copy), 2u);
    EXPECT_EQ(vdmu::findClone(*m_mapping, source), copy);
    const OdDbObjectId carrier = open<OdDbBlockTableRecord>(copy)->entityIds().last();
    EXPECT_EQ(open<PathCarrier>(carrier)->path.topId(), vdmu::findClone(*m_mapping, m_line));
    EXPECT_EQ(unitsOf(copy), OdDb::kUnitsMeters);
  }

  OdDbObjectId m_line;
  OdDbIdMappingPtr m_mapping;
};

TEST_F(VdmBlockUtilsTest, ClonesABlockWithoutViews) {
  const OdDbObjectId source = addSource(OdDb::kUnitsMeters);
  const OdDbObjectId copy = vdmu::cloneBlock(source, false, m_mapping);
  expectCopy(source, copy);
  EXPECT_EQ(open<OdDbBlockTableRecord>(copy)->origin(), OdGePoint3d(1, 2, 3));
  const OdDbObjectId target = addBlock(m_drawing, L"TARGET");
  EXPECT_EQ(raisedBy([&] { (void)vdmu::cloneBlock(m_line, target, false, m_mapping, nullptr); }),
            eNotThatKindOfClass);
}

TEST_F(VdmBlockUtilsTest, WritesABlockToAnotherDrawing) {
  const OdDbObjectId source = addSource(OdDb::kUnitsMeters);
  const OdDbDatabasePtr other = m_host.createDatabase();
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcWblkObjects);
  const OdDbObjectId copy = vdmu::wblockBlock(source, other, false, m_mapping, OdDbObjectId::kNull);
  expectCopy(source, copy);
  EXPECT_EQ(copy.database(), other.get());
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
  addReference(source, other);  // would show itself in the other block
  EXPECT_EQ(vdmu::swapBlocksContent(source, other), eCircularReference);
  EXPECT_EQ(countEntities(source), 4u);
  EXPECT_EQ(line.ownerId(), other);
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
    const OdGeScale3d wanted(row.effective, 1.0, 1.0);
    EXPECT_EQ(vdmu::setEffectiveBlockRefScale(reference, wanted), row.result);
    EXPECT_DOUBLE_EQ(open<OdDbBlockReference>(reference)->scaleFactors().sx, row.factor);
  }
}

TEST_F(VdmBlockUtilsTest, AnArrayIsOneWithoutTheModuleOfItsActionToo) {
  ArrayAction::rxInit();
  const OdDbObjectId array = addBlock(m_drawing, L"ARRAY");
  addReference(array, addBlock(m_drawing, L"ITEM"));
  edit<OdDbObject>(array)->addPersistentReactor(
      m_drawing->addOdDbObject(ArrayAction::createObject(), m_modelSpace));
  const OdDbHandle handle = array.getHandle();
  ASSERT_TRUE(m_drawing->saveAs(path("array.vdm")).ok());
  m_drawing = nullptr;
  ArrayAction::rxUninit();
  m_drawing = read("array.vdm");
  EXPECT_TRUE(vdmu::isAssociativeArray(open<OdDbObject>(m_drawing->getOdDbObjectId(handle))));
  EXPECT_FALSE(vdmu::isAssociativeArray(open<OdDbObject>(m_drawing->getModelSpaceId())));
}

TEST_F(VdmBlockUtilsTest, ReactorsAreDetachedFromObjectsAndTheirClones) {
  const OdDbObjectId line = addLine(m_modelSpace);
  const OdDbObjectId reactor = addCarrier(m_modelSpace);
  edit<OdDbObject>(line)->addPersistentReactor(reactor);
  m_mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  ASSERT_EQ(m_drawing->deepCloneObjects({line, reactor}, m_modelSpace, *m_mapping), eOk);
  const OdDbObjectId clone = vdmu::findClone(*m_mapping, line);
  ASSERT_TRUE(vdmu::hasReactor(clone, {PathCarrier::desc()}));
  const OdArray<OdDbObjectId> objects{line, OdDbObjectId::kNull, reactor};
  vdmu::detachReactor(objects, reactor, nullptr);
  EXPECT_FALSE(vdmu::hasReactor(line, {PathCarrier::desc()}));
  EXPECT_TRUE(vdmu::hasReactor(clone, {PathCarrier::desc()}));
  vdmu::detachReactor(objects, reactor, m_mapping);
  EXPECT_FALSE(vdmu::hasReactor(clone, {PathCarrier::desc()}));
}

}  // namespace
