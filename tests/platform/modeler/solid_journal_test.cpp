// The journal of solids: what is written, and for whom.
#include "platform/modeler/solid_journal.h"

#include <functional>

#include "tests/support/solid_drawing_testing.h"

namespace {

class OdSolidJournalTest : public DrawingTest {};

TEST_F(OdSolidJournalTest, EachChangeIsWrittenWithWhatItCameFrom) {
  const OdDbObjectId id = addSolid(box(10.0, 10.0, 10.0));
  const OdModelerBodyPtr start = solid(id)->body();
  const OdModelerBodyPtr tool = cylinder(2.0, 20.0, {5.0, 5.0, -5.0});
  OdSolidJournal journal;
  ASSERT_TRUE(succeeded(
      solid(id, OdDb::kForWrite)->booleanOper(OdModelerBooleanKind::kSubtract, {&tool, 1})));
  const OdGeMatrix3d up = OdGeMatrix3d::translation({0.0, 0.0, 7.0});
  ASSERT_EQ(solid(id, OdDb::kForWrite)->transformBy(up), eOk);
  solid(id, OdDb::kForWrite)->setFaceColor(1, OdCmColor::fromRGB(1, 2, 3));
  solid(id, OdDb::kForWrite)->setBody(start);
  const OdUInt32 none = 0;
  EXPECT_FALSE(solid(id, OdDb::kForWrite)->filletEdges({&none, 1}, 1.0).ok());
  const std::span<const OdSolidChange> changes = journal.changes();
  ASSERT_EQ(changes.size(), 4u) << "what failed is not written";
  using Kind = OdSolidChangeKind;
  const Kind kinds[] = {Kind::kBoolean, Kind::kMoved, Kind::kMoved, Kind::kReplaced};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(changes[i].kind, kinds[i]) << i;
    EXPECT_EQ(changes[i].solid, id);
    EXPECT_EQ(changes[i].before, i == 0 ? start : changes[i - 1].after);
    EXPECT_EQ(changes[i].history != nullptr, i == 0);
  }
  EXPECT_EQ(changes[0].tools, std::vector<OdModelerBodyPtr>{tool});
  EXPECT_EQ(changes[0].history->inputs.size(), 2u);
  EXPECT_EQ(changes[1].transform, up);
  EXPECT_EQ(changes[2].transform, OdGeMatrix3d::kIdentity) << "a colour moves nothing";
}

TEST_F(OdSolidJournalTest, BlendsAndRemovedFacesAreNotWrittenAsBooleans) {
  const OdModelerBodyPtr plate = plateWithHole();
  const OdUInt32 wall = faceOfKind(*plate, OdModelerSurfaceKind::kCylinder);
  const OdUInt32 edge = 1;
  const std::function<OdStatus(OdDb3dSolid&)> operations[] = {
      [&](OdDb3dSolid& s) {
        return s.filletEdges({&edge, 1}, 1.0);
      },
      [&](OdDb3dSolid& s) {
        return s.chamferEdges({&edge, 1}, 1.0);
      },
      [&](OdDb3dSolid& s) {
        return s.removeFaces({&wall, 1});
      },
  };
  OdSolidJournal journal;
  for (const auto& operation : operations) {
    journal.dropSince(0);
    const OdDbObjectId id = addSolid(plate);
    ASSERT_TRUE(succeeded(operation(*solid(id, OdDb::kForWrite))));
    const OdSolidChange& change = journal.changes().back();
    EXPECT_EQ(change.kind, OdSolidChangeKind::kBlend);
    EXPECT_EQ(change.before, plate);
    EXPECT_EQ(change.after, solid(id)->body());
    EXPECT_TRUE(change.tools.empty());
    ASSERT_EQ(change.history->inputs.size(), 1u);
    EXPECT_EQ(change.history->inputs[0].faces.size(), plate->numFaces());
  }
}

TEST_F(OdSolidJournalTest, InnerJournalsHandOnAndUndoWritesNothing) {
  const OdDbObjectId id = addSolid(box(10.0, 10.0, 10.0));
  const auto move = [&] {
    m_database->startUndoRecord();
    (void)solid(id, OdDb::kForWrite)->transformBy(OdGeMatrix3d::translation({1.0, 0.0, 0.0}));
  };
  OdSolidJournal outer;
  move();
  {
    OdSolidJournal inner;
    EXPECT_EQ(OdSolidJournal::current(), &inner);
    move();
    EXPECT_EQ(inner.changes().size(), 1u);
  }
  EXPECT_EQ(OdSolidJournal::current(), &outer);
  ASSERT_EQ(outer.changes().size(), 2u);
  ASSERT_EQ(m_database->undo(), eOk);
  outer.dropSince(1);
  EXPECT_EQ(outer.mark(), 1u);
  // The body was read again; it is the same one, and says so.
  EXPECT_EQ(solid(id)->body()->fingerprint(), outer.changes()[0].after->fingerprint());
  EXPECT_NE(solid(id)->body()->fingerprint(), outer.changes()[0].before->fingerprint());
}

}  // namespace
