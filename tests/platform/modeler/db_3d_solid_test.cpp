// Solids in a drawing: filing, undo, subentities, failures.
#include <tuple>

#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/filer/memory_filer.h"
#include "platform/modeler/history.h"
#include "tests/support/solid_drawing_testing.h"

namespace {

using Kind = OdModelerBooleanKind;

class OdDb3dSolidTest : public DrawingTest {
 protected:
  static OdDbFilerBuffer filed(const OdDb3dSolid& solid) {
    OdDbFilerBuffer buffer;
    OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
    solid.dwgOutFields(&filer);
    return buffer;
  }
  static OdResult read(OdDb3dSolid& solid, OdDbFilerBuffer& buffer) {
    OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
    filer.startReading(0, 0);
    return solid.dwgInFields(&filer);
  }
};

TEST_F(OdDb3dSolidTest, UndoAndRedoBringBodiesBackToTheByte) {
  const OdDbObjectId id = addSolid(box(10.0, 10.0, 10.0));
  const OdBinaryData before = bytesOf(solid(id)->body());
  m_database->startUndoRecord();
  const OdModelerBodyPtr drill = cylinder(2.0, 20.0, {5.0, 5.0, -5.0});
  ASSERT_TRUE(succeeded(solid(id, OdDb::kForWrite)->booleanOper(Kind::kSubtract, {&drill, 1})));
  const OdBinaryData after = bytesOf(solid(id)->body());
  EXPECT_NE(before, after);
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(m_database->undo(), eOk);
    EXPECT_EQ(bytesOf(solid(id)->body()), before);
    ASSERT_EQ(m_database->redo(), eOk);
    EXPECT_EQ(bytesOf(solid(id)->body()), after);
  }
}

TEST_F(OdDb3dSolidTest, FailedOperationsLeaveBodyAndUndoAlone) {
  const OdDbObjectId id = addSolid(box(1.0, 1.0, 1.0));
  const OdDbObjectId big = addSolid(box(5.0, 5.0, 5.0, {-1.0, -1.0, -1.0}));
  const OdDbObjectId empty = addSolid(nullptr);
  m_database->clearUndo();
  m_database->startUndoRecord();
  const OdModelerBodyPtr before = solid(id)->body();
  OdDb3dSolidPtr writer = solid(id, OdDb::kForWrite);
  const OdUInt32 edges[] = {1};
  EXPECT_EQ(writer->booleanOper(Kind::kSubtract, *solid(big)).code, eDegenerateGeometry);
  EXPECT_EQ(writer->booleanOper(Kind::kUnite, *solid(empty)).code, eInvalidInput);
  EXPECT_FALSE(writer->filletEdges(edges, 40.0).ok());
  EXPECT_FALSE(writer->chamferEdges(edges, -1.0).ok());
  EXPECT_NE(writer->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(1.0, 0.0, 1.0))), eOk);
  EXPECT_EQ(solid(empty, OdDb::kForWrite)->booleanOper(Kind::kUnite, *writer).code, eInvalidInput);
  writer.release();
  EXPECT_EQ(solid(id)->body(), before);
  EXPECT_EQ(m_database->undo(), eNothingToUndo);
}

TEST_F(OdDb3dSolidTest, SubentitiesAndMarkersFindEachOther) {
  const OdDbObjectId id = addSolid(plateWithHole());
  const OdDb3dSolidPtr plate = solid(id);
  const std::tuple<OdDb::SubentType, OdGsMarker, OdGsMarker> rows[] = {
      {OdDb::kFaceSubentType, 1, 5},
      {OdDb::kFaceSubentType, 3, 13},
      {OdDb::kEdgeSubentType, 15, 62},
      {OdDb::kVertexSubentType, 10, 43}};
  const OdDbObjectIdArray stack{m_database->getPaperSpaceId(), m_database->getModelSpaceId()};
  for (const auto& [type, index, marker] : rows) {
    OdArray<OdGsMarker> markers;
    ASSERT_EQ(plate->getGsMarkersAtSubentPath({id, {type, index}}, markers), eOk);
    EXPECT_EQ(markers, OdArray<OdGsMarker>{marker});
    OdDbFullSubentPathArray paths;
    ASSERT_EQ(plate->getSubentPathsAtGsMarker(type, marker, paths, &stack), eOk);
    EXPECT_EQ(paths[0].subentId(), OdDbSubentId(type, index));
    const OdDbObjectIdArray outermostFirst{stack[1], stack[0], id};
    EXPECT_EQ(paths[0].objectIds(), outermostFirst);
    EXPECT_FALSE(plate->subentPtr({id, {type, index}}).isNull());
  }
  OdDbFullSubentPathArray none;
  for (const OdGsMarker marker : {0, 1, 4, 8, 33, 66}) {
    EXPECT_EQ(plate->getSubentPathsAtGsMarker(OdDb::kNullSubentType, marker, none), eInvalidInput);
  }
  EXPECT_EQ(plate->getSubentPathsAtGsMarker(OdDb::kEdgeSubentType, 5, none), eInvalidInput);
  EXPECT_TRUE(plate->subentPtr({id, {OdDb::kFaceSubentType, 8}}).isNull());
  EXPECT_TRUE(plate->subentPtr({id, {OdDb::kFaceSubentType, OdGsMarker{1} << 32}}).isNull());
}

TEST_F(OdDb3dSolidTest, BytesThatCannotBeReadAreKeptAndTold) {
  OdDb3dSolidPtr source = OdDb3dSolid::createObject();
  ASSERT_TRUE(succeeded(source->createBox(1.0, 1.0, 1.0)));
  OdDbFilerBuffer damaged = filed(*source);
  damaged.bytes.back() ^= 1;
  OdDb3dSolidPtr target = OdDb3dSolid::createObject();
  ASSERT_EQ(read(*target, damaged), eOk) << "the body is read when it is asked for";
  EXPECT_FALSE(target->isNull());
  EXPECT_THROW(static_cast<void>(target->body()), OdError);
  OdModelerBodyPtr body;
  EXPECT_EQ(target->getBody(body).code, eCorruptData);
  EXPECT_EQ(target->createBox(0.0, 1.0, 1.0).code, eInvalidInput);
  OdDbAuditInfo info;
  target->audit(&info);
  EXPECT_EQ(info.numErrors(), 1u);
  EXPECT_EQ(filed(*target).bytes, damaged.bytes);
}

TEST_F(OdDb3dSolidTest, CountsBeyondTheRecordAreRefused) {
  OdDbFilerBuffer hostile = filed(*OdDb3dSolid::createObject());
  const std::size_t count = hostile.bytes.size() - 4;
  for (const OdUInt8 top : {OdUInt8{0x00}, OdUInt8{0x7F}, OdUInt8{0xFF}}) {
    hostile.bytes[count] = 1;
    hostile.bytes[count + 3] = top;
    EXPECT_THROW(read(*OdDb3dSolid::createObject(), hostile), OdError);
  }
}

TEST(OdModelerHistory, TableNamesEveryOldFaceDeletedOnesWithoutImages) {
  OdModelerHistory history;
  OdModelerInputHistory& base = history.inputs.emplace_back();
  base.faces = {{{2, 3}, {}, true}, {{}, {}, false}, {{1}, {}, false}};
  const std::map<OdUInt32, std::vector<OdUInt32>> expected = {{5, {9, 13}}, {9, {}}, {13, {5}}};
  EXPECT_EQ(history.faceMarkers(0), expected);
  EXPECT_TRUE(history.faceMarkers(1).empty());
  EXPECT_EQ(base.find({OdModelerSubentType::kFace, 4}), nullptr);
  EXPECT_EQ(base.find({OdModelerSubentType::kFace, 0}), nullptr);
}

}  // namespace
