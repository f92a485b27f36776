// What tools of components reach and take: from any face, in any part.
#include "host/modeling/tool_fit.h"

#include <algorithm>
#include <numbers>
#include <tuple>

#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/failing_modeler.h"

using namespace vdm_host;

namespace {

class ToolFitTest : public ModelingTest {
 protected:
  /// A part with a slit of `gap` in a face, the opposite wall above it.
  static OdModelerBodyPtr slitPart(double gap) {
    return combine(OdModelerBooleanKind::kSubtract, box(60.0, 40.0, 30.0),
                   {box(60.0, 40.0, gap, {10, -5, 10})});
  }
};

TEST_F(ToolFitTest, AnInsertThatChangesNothingIsRefusedUnlessItIsWanted) {
  const OdDbObjectId blind = hole(L"blind", 20.0, 4.0);
  put(hole(L"wide", 40.0, 8.0), 200.0, 100.0);
  ComponentPlacement placement;
  placement.solid = m_plate;
  placement.direction = OdGeVector3d::kZAxis;
  const auto before = snapshot();
  // In the air above the face, off the part, in the hole that another component made.
  for (const OdGePoint3d& point :
       {OdGePoint3d(50, 50, 14.5), OdGePoint3d(400, 50, 10), OdGePoint3d(200, 100, 10)}) {
    placement.point = point;
    placement.acceptsNoEffect = false;
    const EditResult refused = m_editor->insertComponent(blind, placement);
    EXPECT_FALSE(refused.ok());
    EXPECT_GE(refused.status.text.find(L"it changes nothing: solid"), 0)
        << refused.status.text.utf8();
    EXPECT_EQ(snapshot(), before);
    placement.acceptsNoEffect = true;
    const EditResult forced = m_editor->insertComponent(blind, placement);
    ASSERT_TRUE(done(forced));
    EXPECT_FALSE(forced.report.isSound());
    ASSERT_EQ(m_database->undo(), eOk);
  }
  // A component that was moved off the part is there all the same, and cuts again when it is back.
  const EditResult made = insert(blind, 50.0, 50.0);
  EXPECT_FALSE(m_editor->moveObject(made.created, {0, 0, 30}).report.isSound());
  EXPECT_TRUE(m_editor->moveObject(made.created, {0, 0, -30}).report.isSound());
  EXPECT_TRUE(isAsFresh(m_base));
}

// The normal of any face, by the face alone: free-form ones that are flat or round among them.
TEST_F(ToolFitTest, TheDirectionIsTheNormalOfAnyFaceAtThePoint) {
  OdModelerBodyPtr tube = cylinder(30.0, 60.0);
  const OdModelerBodyPtr bore = cylinder(20.0, 60.0);
  tube = combine(OdModelerBooleanKind::kSubtract, tube, {bore});
  // A stretch by unequal factors writes every surface in free form; the walls are no cylinders.
  OdGeMatrix3d stretch;
  stretch.entry[0][0] = 1.0001;
  for (const OdModelerBodyPtr& body : {tube, moved(tube, stretch)}) {
    m_plate = addSolid(body);
    const OdDbObjectId block = hole(body == tube ? L"round" : L"free form", 4.0, 3.0);
    int free = 0;
    for (OdUInt32 face = 1; face <= body->numFaces(); ++face) {
      free += body->surfaceKind(face) == OdModelerSurfaceKind::kOther;
    }
    EXPECT_EQ(free, body == tube ? 0 : 2);
    const std::pair<OdGePoint3d, OdGeVector3d> places[] = {{{25, 0, 60}, OdGeVector3d::kZAxis},
                                                           {{0, -25, 0}, -OdGeVector3d::kZAxis},
                                                           {{0, 30, 30}, OdGeVector3d::kYAxis},
                                                           {{0, 20, 30}, -OdGeVector3d::kYAxis}};
    for (const auto& [point, normal] : places) {
      const EditResult made = insertAt(block, point);
      ASSERT_TRUE(done(made));
      const OdGeMatrix3d place = made.created.openAs<OdDbBlockReference>()->blockTransform();
      EXPECT_TRUE((place * OdGeVector3d::kZAxis).isEqualTo(normal, OdGeTol(1e-6)));
    }
  }
}

TEST_F(ToolFitTest, AToolTakesNothingThatItsComponentDoesNotMean) {
  struct Row {
    const char* what;
    OdModelerBodyPtr body;
    OdGePoint3d at;
    double taken;
  };
  const double half = 0.5 * drilled(8.0, 5.0);
  const Row rows[] = {
      {"from outside", box(60.0, 40.0, 30.0), {30, 20, 30}, drilled(8.0, 5.0)},
      {"a wall 1 above the face", slitPart(1.0), {40, 20, 10}, drilled(8.0, 5.0)},
      {"a wall 1.99 above the face", slitPart(1.99), {40, 20, 10}, drilled(8.0, 5.0)},
      {"a wall far above the face", slitPart(15.0), {40, 20, 10}, drilled(8.0, 5.0)},
      {"a wall that rises from the face", slitPart(15.0), {10, 20, 10}, 2.0 * half},
      {"a little above the face", slitPart(15.0), {40, 20, 10.001}, drilled(8.0, 4.999)},
      {"a little below the face", slitPart(15.0), {40, 20, 9.999}, drilled(8.0, 5.001)},
  };
  const OdDbObjectId block = hole(L"H", 8.0, 5.0);
  for (const Row& row : rows) {
    m_plate = addSolid(row.body);
    ComponentPlacement placement;
    placement.solid = m_plate;
    placement.point = row.at;
    placement.direction = OdGeVector3d::kZAxis;
    const double before = volume();
    for (OdUInt32 face = 1; face <= numFaces(); ++face) {
      const OdModelerFace& base = plateBody()->face(face);
      if (base.kind == OdModelerSurfaceKind::kPlane && base.axis.z > 0.99 &&
          plateBody()->distanceTo({OdModelerSubentType::kFace, face}, row.at) < 0.01) {
        placement.face = OdDbSubentId(OdDb::kFaceSubentType, face);
      }
    }
    ASSERT_TRUE(placement.face) << row.what;
    const EditResult made = m_editor->insertComponent(block, placement);
    ASSERT_TRUE(done(made)) << row.what;
    EXPECT_NEAR(before - volume(), row.taken, 1e-3) << row.what;
    EXPECT_TRUE(succeeded(plateBody()->check())) << row.what;
    ASSERT_TRUE(done(m_editor->eraseObject(made.created)));
    EXPECT_NEAR(volume(), before, 1e-3) << row.what;
  }
}

// By more than the modeller takes for coincident, also where the bore is deeper than the part.
TEST_F(ToolFitTest, AThroughToolReachesBeyondWhatItGoesThrough) {
  for (const double thickness : {0.5, 4.0, 10.0, 1500.0}) {
    for (const double boreDepth : {0.0, 4.0}) {
      ToolForm form{ToolShape::kCounterbore, 6.0, 0.0, 12.0, boreDepth, {}};
      if (boreDepth == 0.0) form.shape = ToolShape::kHole;
      ToolReach reach;
      const OdStatus status =
          fitReach(box(60.0, 60.0, thickness),
                   {form, OdGeMatrix3d::translation({30.0, 30.0, thickness}), BaseFace()}, reach);
      ASSERT_TRUE(succeeded(status));
      EXPECT_GT(reach.below, std::max(thickness, boreDepth) + 0.1 * form.width);
      EXPECT_GT(reach.above, 0.1 * form.width);
    }
  }
}

// A face that lies in the tool's face but for the rounding of its numbers is nothing above it.
TEST_F(ToolFitTest, AToolThatCutsFromOutsideCostsNoLookAboveItsFace) {
  const auto counting = std::make_shared<FailingModeler>(odCreateOcctModeler());
  odSetModeler(counting);
  const ToolForm form{ToolShape::kHole, 8.0, 0.0, 0.0, 0.0, 5.0};
  const auto lift = [](double z) { return OdGeMatrix3d::translation({0.0, 0.0, z}); };
  const OdModelerBodyPtr block = box(60.0, 40.0, 30.0);
  const OdModelerBodyPtr slit = slitPart(1.0);
  for (const double z : {0.0, 0.1, 0.7, 1000.0 / 3.0, 1e5 / 7.0}) {
    for (const auto& [body, height, looks] :
         {std::tuple(block, 30.0, 0), std::tuple(slit, 10.0, 1)}) {
      ToolReach reach;
      counting->failAt(0);
      const OdGeMatrix3d place = OdGeMatrix3d::translation({40.0, 20.0, height + z + 0.2});
      const OdModelerBodyPtr lifted = moved(moved(body, lift(z)), lift(0.2));
      ASSERT_TRUE(succeeded(fitReach(lifted, {form, place, BaseFace()}, reach)));
      EXPECT_EQ(counting->count(), looks) << "lifted by " << z;
    }
  }
}

// In a round bar the rim of the hole is where the bar is, and nothing stays of it above.
TEST_F(ToolFitTest, ACurvedFaceIsOpenedWholly) {
  const OdModelerBodyPtr pipe =
      combine(OdModelerBooleanKind::kSubtract, cylinder(30.0, 60.0), {cylinder(20.0, 60.0)});
  m_plate = addSolid(pipe);
  const OdDbObjectId block = hole(L"H", 12.0, 14.0);
  for (const auto& [point, direction] :
       {std::pair(OdGePoint3d(30, 0, 30), OdGeVector3d(1, 0, 0)),
        std::pair(OdGePoint3d(-20, 0, 30), OdGeVector3d(1, 0, 0))}) {
    const EditResult made = insertAt(block, point);
    ASSERT_TRUE(done(made));
    EXPECT_EQ(numFaces(), 5U) << "one wall, which goes from inside to outside";
    const OdGeMatrix3d place = made.created.openAs<OdDbBlockReference>()->blockTransform();
    EXPECT_TRUE((place * OdGeVector3d::kZAxis).isEqualTo(direction, OdGeTol(1e-6)));
    ASSERT_TRUE(done(m_editor->eraseObject(made.created)));
    EXPECT_EQ(numFaces(), 4U);
  }
}

// A bar over the bottom of a groove: above the rim of the hole, and within the reach of its tool.
TEST_F(ToolFitTest, AToolInACurvedFaceOpensItsRimAndLeavesWhatIsBeyond) {
  const OdDbObjectId block = hole(L"H", 12.0, 5.0);
  for (const double angle : {0.0, 0.3, 1.1, 2.9, 4.0}) {
    OdGeMatrix3d turn = OdGeMatrix3d::rotation(angle, OdGeVector3d(1.0, 2.0, 3.0).normal());
    const OdModelerBodyPtr groove =
        combine(OdModelerBooleanKind::kSubtract, box(60.0, 60.0, 60.0, {-30.0, -30.0, -30.0}),
                {moved(cylinder(20.0, 80.0, {0.0, 0.0, -40.0}),
                       OdGeMatrix3d::rotation(0.5 * std::numbers::pi, OdGeVector3d::kYAxis))});
    const OdModelerBodyPtr open =
        combine(OdModelerBooleanKind::kSubtract, groove, {box(80, 80, 60, {-40, -40, 0})});
    const OdModelerBodyPtr barred =
        combine(OdModelerBooleanKind::kUnite, open, {box(20, 26, 2, {-10, -13, -18})});
    double taken[2];
    for (const OdModelerBodyPtr& body : {open, barred}) {
      m_plate = addSolid(moved(body, turn));
      const double before = volume();
      ASSERT_TRUE(done(insertAt(block, turn * OdGePoint3d(0.0, 0.0, -20.0))));
      taken[body == barred ? 1 : 0] = before - volume();
    }
    EXPECT_GT(taken[0], drilled(12.0, 5.0) + 1.0) << "the rim is opened";
    EXPECT_NEAR(taken[1], taken[0], 1e-3) << "the bar is cut, turned by " << angle;
  }
}

TEST_F(ToolFitTest, AThroughHoleGoesThroughWhateverItIsCutInto) {
  const OdDbObjectId through = hole(L"through", 6.0);
  OdDbObjectId bored;
  ASSERT_TRUE(succeeded(makeCounterbore(m_database, L"bored", {6.0, {}, 12.0, 4.0}, bored)));
  const EditResult made = insert(through, 50.0, 50.0);
  const EditResult other = insert(bored, 100.0, 50.0);
  const OdUInt32 faces = numFaces();
  const OdDbObjectId wall = openingReference(made.feature, 1);
  for (const double depth : {1500.0, 3.0, 20000.0}) {
    ASSERT_TRUE(
        done(m_editor->replaceBody(m_plate, box(300.0, 200.0, depth, {0.0, 0.0, 10.0 - depth}))));
    EXPECT_EQ(numFaces(), depth > 4.0 ? faces : faces - 2) << depth;
    EXPECT_TRUE(succeeded(plateBody()->check()));
    EXPECT_EQ(openingReference(made.feature, 1), wall);
    EXPECT_NE(openingFace(made.feature, 1), 0U);
  }
  ASSERT_TRUE(done(m_editor->eraseObject(made.created)));
  ASSERT_TRUE(done(m_editor->eraseObject(other.created)));
  EXPECT_NEAR(volume(), 300.0 * 200.0 * 20000.0, 1.0);
}

}  // namespace
