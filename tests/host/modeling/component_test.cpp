// Components: what inserting, moving, suppressing and erasing them does to solids and references.
#include <algorithm>
#include <numbers>

#include "host/naming/name_feature.h"
#include "host/naming/reference_query.h"
#include "platform/db/block_table.h"
#include "platform/db/locked_layers.h"
#include "tests/host/modeling/modeling_testing.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"

using namespace vdm_host;

namespace {

constexpr double kPlate = 300.0 * 200.0 * 10.0;

class ComponentTest : public ModelingTest {};

TEST_F(ComponentTest, AHoleFollowsItsInsertAndIsHealedWithIt) {
  const OdDbObjectId block = hole(L"M8", 9.0);
  const EditResult made = insert(block, 50.0, 50.0);
  EXPECT_NEAR(volume(), kPlate - drilled(9.0, 10.0), 1e-3);
  EXPECT_EQ(numFaces(), 7U);
  EXPECT_EQ(component(made.feature)->name(), OdString(L"Hole_1"));
  EXPECT_EQ(VdmFeatureManagerUtils::getComponentFeatures(made.created, {}, true)[0], made.feature);
  const OdDbObjectId wall = openingReference(made.feature, 1);
  ASSERT_NE(openingFace(made.feature, 1), 0U);

  ASSERT_TRUE(done(m_editor->moveObject(made.created, {100.0, 20.0, 0.0})));
  EXPECT_NEAR(volume(), kPlate - drilled(9.0, 10.0), 1e-3);
  EXPECT_EQ(openingReference(made.feature, 1), wall);
  const OdModelerFace& face = plateBody()->face(openingFace(made.feature, 1));
  EXPECT_NEAR(face.origin.x, 150.0, 1e-6);
  EXPECT_NEAR(face.origin.y, 70.0, 1e-6);

  ASSERT_TRUE(done(m_editor->eraseObject(made.created)));
  EXPECT_NEAR(volume(), kPlate, 1e-3);
  EXPECT_EQ(numFaces(), 6U);
  EXPECT_TRUE(made.feature.isErased());
}

TEST_F(ComponentTest, TheHalvesOfASplitEdgeStayThemselvesHoweverOftenTheHoleIsCut) {
  OdUInt32 edge = 1;
  while (plateBody()->distanceTo({OdModelerSubentType::kEdge, edge}, {150.0, 0.0, 10.0}) > 1e-6) {
    ++edge;
  }
  OdDbObjectId name;
  ASSERT_EQ(nameReference({m_plate, OdDbSubentId(OdDb::kEdgeSubentType, edge)}, L"rim", name), eOk);
  const EditResult made = insert(hole(L"H", 12.0), 150.0, 0.0);
  const auto halves = [&name] { return name.openAs<VdmNameFeature>()->referenceIds(); };
  const OdDbObjectIdArray split = halves();
  ASSERT_EQ(split.size(), 2U);
  ASSERT_TRUE(done(m_editor->update(/*force=*/true)));
  ASSERT_TRUE(done(m_editor->moveObject(made.created, {20.0, 0.0, 0.0})));
  EXPECT_EQ(halves(), split);
  double lengths = 0.0;
  for (const OdDbObjectId& id : split) {
    const ResolvedReference now = resolveReference(id);
    ASSERT_TRUE(now.resolved());
    lengths += plateBody()->edge(static_cast<OdUInt32>(now.path.subentId().index())).length;
  }
  EXPECT_NEAR(lengths, 300.0 - 12.0, 1e-6);
}

TEST_F(ComponentTest, ASuppressedHoleComesBackWithItsReferences) {
  const EditResult made = insert(hole(L"H", 20.0, 4.0), 100.0, 100.0);
  const OdDbObjectId wall = openingReference(made.feature, 1);
  const double cut = volume();
  EditResult result = m_editor->suppress(made.created);
  ASSERT_TRUE(done(result));
  EXPECT_NEAR(volume(), kPlate, 1e-3);
  EXPECT_EQ(openingFace(made.feature, 1), 0U);
  EXPECT_FALSE(result.report.isSound());

  ASSERT_TRUE(done(m_editor->unsuppress(made.created)));
  EXPECT_NEAR(volume(), cut, 1e-3);
  EXPECT_EQ(openingReference(made.feature, 1), wall);
  EXPECT_NE(openingFace(made.feature, 1), 0U);
}

// A slot with one round end beside the plate, turned half round: the body is the same again.
TEST_F(ComponentTest, AFaceInThePlaceOfAnotherIsNotTheOther) {
  OdDbObjectId slot;
  ASSERT_TRUE(succeeded(makeSlot(m_database, L"slot", {12.0, 40.0, 4.0}, slot)));
  const EditResult made = insert(slot, 12.0, 100.0);
  const auto roundEnds = [&] {
    std::vector<int> ends;
    for (int face = 1; face <= 6; ++face) {
      const OdUInt32 now = openingFace(made.feature, face);
      if (now != 0 && plateBody()->face(now).kind == OdModelerSurfaceKind::kCylinder) {
        ends.push_back(face);
      }
    }
    return ends;
  };
  const std::vector<int> before = roundEnds();
  ASSERT_EQ(before.size(), 1U);
  const OdDbObjectId reference = openingReference(made.feature, before[0]);
  ASSERT_TRUE(done(m_editor->rotateObject(made.created, OdGeVector3d::kZAxis, std::numbers::pi)));
  const std::vector<int> turned = roundEnds();
  ASSERT_EQ(turned.size(), 1U);
  EXPECT_NE(turned, before);
  EXPECT_FALSE(resolveReference(reference).resolved());
  ASSERT_TRUE(done(m_editor->rotateObject(made.created, OdGeVector3d::kZAxis, std::numbers::pi)));
  EXPECT_EQ(roundEnds(), before);
  EXPECT_TRUE(resolveReference(reference).resolved());
}

TEST_F(ComponentTest, OfOpeningsThatShareAFaceTheSuppressedOneLetsItGo) {
  const OdDbObjectId block = boss(L"B", 30.0, 7.0);
  const EditResult stays = insert(block, 100.0, 100.0);
  const EditResult goes = insert(block, 110.0, 100.0);
  const auto topOf = [&](const EditResult& made) {
    for (int face = 1; face <= 3; ++face) {
      const OdUInt32 now = openingFace(made.feature, face);
      if (now != 0 && plateBody()->face(now).centroid.z > 16.9) return now;
    }
    return 0U;
  };
  ASSERT_NE(topOf(stays), 0U);
  ASSERT_EQ(topOf(stays), topOf(goes));
  ASSERT_TRUE(done(m_editor->suppress(goes.created)));
  EXPECT_NE(topOf(stays), 0U);
  for (const auto& [toolFace, references] : component(goes.feature)->openingDependencies()) {
    for (const OdDbObjectId& id : references) EXPECT_FALSE(resolveReference(id).resolved());
  }
  ASSERT_TRUE(done(m_editor->unsuppress(goes.created)));
  EXPECT_NE(topOf(stays), 0U);
  EXPECT_EQ(topOf(stays), topOf(goes));
}

TEST_F(ComponentTest, AMovedSolidTakesItsComponentsAlongWithoutCutting) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  const OdUInt32 face = openingFace(made.feature, 1);
  ASSERT_TRUE(done(m_editor->rotateObject(m_plate, OdGeVector3d::kZAxis, 0.5, OdGePoint3d())));
  EXPECT_EQ(openingFace(made.feature, 1), face);
  const OdGeMatrix3d turn = OdGeMatrix3d::rotation(0.5, OdGeVector3d::kZAxis);
  const OdDbBlockReferencePtr place = made.created.openAs<OdDbBlockReference>();
  EXPECT_TRUE(place->position().isEqualTo(turn * OdGePoint3d(100.0, 100.0, 10.0)));
  EXPECT_TRUE(isAsFresh(moved(m_base, turn)));
  ASSERT_TRUE(done(m_editor->removeFeature(made.feature)));
  EXPECT_EQ(numFaces(), 6U);
}

TEST_F(ComponentTest, AReplacedBodyIsCutAnewAndInsertsFollowTheirBaseFaces) {
  const EditResult made = insert(hole(L"H", 20.0, 4.0), 100.0, 100.0);
  const OdModelerBodyPtr thicker = box(300.0, 200.0, 16.0);
  const EditResult result = m_editor->replaceBody(m_plate, thicker);
  ASSERT_TRUE(done(result));
  EXPECT_EQ(result.report.features[0].reason, OdString(L"its solid was replaced"));
  EXPECT_EQ(m_editor->update(/*force=*/true).report.features[0].reason, OdString(L"asked for"));
  const OdDbBlockReferencePtr place = made.created.openAs<OdDbBlockReference>();
  EXPECT_NEAR(place->position().z, 16.0, 1e-6);
  EXPECT_NEAR(volume(), 300.0 * 200.0 * 16.0 - drilled(20.0, 4.0), 1e-3);
  EXPECT_NE(openingFace(made.feature, 1), 0U);
  ASSERT_TRUE(done(m_editor->removeFeature(made.feature)));
  EXPECT_NEAR(volume(), 300.0 * 200.0 * 16.0, 1e-3);
}

TEST_F(ComponentTest, WhatIsStoredIsEnoughToHealAfterOpeningTheFile) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  put(boss(L"B", 40.0, 20.0), 200.0, 100.0);
  const OdString path(L"components.vdm");
  ASSERT_EQ(m_database->saveAs(path).code, eOk);
  const OdDbHandle insertHandle = made.created.getHandle();
  const OdDbHandle plateHandle = m_plate.getHandle();
  m_editor.reset();
  m_database.release();
  OdStatus status;
  m_database = m_files.readFile(path, status);
  ASSERT_FALSE(m_database.isNull());
  m_plate = m_database->getOdDbObjectId(plateHandle);
  m_editor = std::make_unique<ModelEditor>(m_database.get());
  ASSERT_TRUE(done(m_editor->moveObject(m_database->getOdDbObjectId(insertHandle), {5, 5, 0})));
  EXPECT_TRUE(isAsFresh(m_base));
}

TEST_F(ComponentTest, FreeToolsTakeFromTheResiduesWhatTheyDid) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  const OdDbObjectId bar = addSolid(box(300.0, 8.0, 10.0, {0.0, 96.0, 0.0}));
  ASSERT_TRUE(done(m_editor->booleanSolid(OdModelerBooleanKind::kSubtract, m_plate, bar, true)));
  ASSERT_TRUE(done(m_editor->removeFeature(made.feature)));
  EXPECT_NEAR(volume(), kPlate - 300.0 * 8.0 * 10.0, 1e-3);
}

TEST_F(ComponentTest, RefusalsNameTheThingAndChangeNothing) {
  const auto before = snapshot();
  EXPECT_FALSE(insertAt(m_database->getModelSpaceId(), {50.0, 50.0, 500.0}).ok());
  OdDbObjectId block;
  EXPECT_FALSE(makeHole(m_database, L"x", {0.0, {}}, block).ok());
  EXPECT_FALSE(makeCounterbore(m_database, L"x", {10.0, {}, 8.0, 4.0}, block).ok());
  EXPECT_EQ(makeSlot(m_database, L"x", {10.0, 8.0, {}}, block).text,
            OdString(L"the length 8 is not more than the width 10"));
  EXPECT_EQ(snapshot(), before);
  hole(L"M8", 9.0);
  EXPECT_EQ(makeHole(m_database, L"m8", {5.0, {}}, block).code, eDuplicateKey);
}

// What is on a locked layer is not edited, and follows the edits of others.
TEST_F(ComponentTest, LockedLayersRefuseEditsAndNoConsequences) {
  const EditResult made = insert(hole(L"M8", 9.0), 50.0, 50.0);
  const OdDbObjectId layer = addLayer(m_database, L"Kept");
  edit<OdDbEntity>(m_plate)->setLayer(layer);
  edit<OdDbLayerTableRecord>(layer)->setIsLocked(true);
  ASSERT_TRUE(done(m_editor->moveObject(made.created, {100.0, 0.0, 0.0})));
  EXPECT_NEAR(plateBody()->face(openingFace(made.feature, 1)).origin.x, 150.0, 1e-6);
  const auto before = snapshot();
  const OdDbObjectId plate = m_plate;
  for (const EditResult& refused :
       {m_editor->moveObject(plate, {1, 0, 0}), m_editor->eraseObject(plate),
        m_editor->replaceBody(plate, m_base)}) {
    EXPECT_EQ(refused.status.code, eOnLockedLayer);
    EXPECT_GE(refused.status.text.find(L"layer 'Kept', which is locked"), 0)
        << refused.status.text.utf8();
  }
  EXPECT_EQ(snapshot(), before);
}

TEST_F(ComponentTest, GroupsAreOneStepOrNothing) {
  const OdDbObjectId block = hole(L"H", 9.0);
  const auto before = snapshot();
  {
    EditGroup group(*m_editor);
    put(block, 50.0, 50.0);
    put(block, 80.0, 50.0);
  }
  EXPECT_EQ(snapshot(), before);
  {
    EditGroup group(*m_editor);
    put(block, 50.0, 50.0);
    put(block, 80.0, 50.0);
    group.commit();
  }
  EXPECT_EQ(numFaces(), 8U);
  ASSERT_EQ(m_database->undo(), eOk);
  EXPECT_EQ(snapshot(), before);
}

TEST_F(ComponentTest, ChangesOfOthersAreFoundByAnUpdate) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  made.created.safeOpenAs<OdDbBlockReference>(OdDb::kForWrite)
      ->transformBy(OdGeMatrix3d::translation({50.0, 0.0, 0.0}));
  const OdModelerBodyPtr tool = box(30.0, 30.0, 10.0);
  ASSERT_TRUE(succeeded(
      solid(m_plate, OdDb::kForWrite)->booleanOper(OdModelerBooleanKind::kSubtract, {&tool, 1})));
  ASSERT_TRUE(done(m_editor->update()));
  EXPECT_NEAR(volume(), kPlate - drilled(20.0, 10.0) - 9000.0, 1e-3);
  const OdUInt32 wall = openingFace(made.feature, 1);
  ASSERT_NE(wall, 0U);
  EXPECT_NEAR(plateBody()->face(wall).origin.x, 150.0, 1e-6);

  const EditResult idle = m_editor->update();
  ASSERT_TRUE(done(idle));
  EXPECT_TRUE(idle.report.features.empty());
  ASSERT_TRUE(done(m_editor->update(/*force=*/true)));
  EXPECT_NEAR(volume(), kPlate - drilled(20.0, 10.0) - 9000.0, 1e-3);
}

// The insert did not change: the solid that is not there any more is what ends the feature.
TEST_F(ComponentTest, AComponentOfAnErasedSolidIsErasedByTheNextUpdate) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  m_plate.safeOpenObject(OdDb::kForWrite)->erase();
  const EditResult result = m_editor->update();
  ASSERT_TRUE(done(result));
  EXPECT_TRUE(made.feature.isErased());
  ASSERT_EQ(result.report.features.size(), 1U);
  EXPECT_EQ(result.report.features[0].outcome, FeatureOutcome::kCondemned);
}

// A chamfer of the plate's edge that begins at the wall of a notch and runs on to the corner.
TEST_F(ComponentTest, ABlendThatRunsOnBelongsToThePart) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 0.0);
  OdUInt32 edge = 1;
  while (plateBody()->distanceTo({OdModelerSubentType::kEdge, edge}, {200.0, 0.0, 10.0}) > 1e-6) {
    ++edge;
  }
  ASSERT_TRUE(done(m_editor->chamferEdges(m_plate, {&edge, 1}, 1.5)));
  const double taken = kPlate - 0.5 * drilled(20.0, 10.0) - volume();
  EXPECT_GT(taken, 0.5 * 1.5 * 1.5 * 189.0);
  ASSERT_TRUE(done(m_editor->eraseObject(made.created)));
  EXPECT_NEAR(volume(), kPlate - taken, 1e-3);
}

TEST_F(ComponentTest, ABlendedRimGoesWithItsOpening) {
  const EditResult made = insert(hole(L"H", 20.0), 100.0, 100.0);
  const OdModelerFace& wall = plateBody()->face(openingFace(made.feature, 1));
  std::vector<OdUInt32> rims;
  for (const OdUInt32 edge : wall.edges) {
    if (plateBody()->edge(edge).kind == OdModelerCurveKind::kCircle) rims.push_back(edge);
  }
  ASSERT_EQ(rims.size(), 2U);
  ASSERT_TRUE(done(m_editor->chamferEdges(m_plate, rims, 1.5)));
  EXPECT_EQ(numFaces(), 9U);
  ASSERT_TRUE(done(m_editor->moveObject(made.created, {50.0, 0.0, 0.0})));
  EXPECT_TRUE(isAsFresh(m_base));
}

}  // namespace
