// Following subentities through histories: every claim of the history is held against geometry.
#include "host/naming/lineage_matcher.h"

#include <algorithm>

#include "tests/host/naming/naming_fixture.h"

namespace vdm_host {
namespace {

class VdmLineageMatcher : public NamingTest {
 protected:
  struct Counts {
    int exact = 0, byLineage = 0, split = 0, lost = 0, wrong = 0, missed = 0;
  };

  // The middle of a new subentity, as a point that lies on it.
  static OdGePoint3d middle(const OdModelerBody& body, Type type, OdUInt32 index) {
    if (type == Type::kFace) return body.face(index).pointOnFace;
    return type == Type::kEdge ? body.edge(index).midPoint : body.vertex(index).point;
  }

  // An image lies where its old one was: same surface, curve or place. All that lies there is one.
  Counts judge(const OdModelerBodyPtr& before, const OdModelerBodyPtr& now) {
    const BodyLineage lineage(m_changes);
    const std::optional<BodyTrace> trace = lineage.trace(before, now);
    Counts counts;
    EXPECT_TRUE(trace.has_value());
    if (!trace) return counts;
    LineageMatcher matcher(before, now, *trace);
    const MatchTolerance tolerance = MatchTolerance::of(*before, *now);
    for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
      const std::vector<SubentSignature> old = signaturesOf(*before, type);
      const std::vector<SubentSignature> fresh = signaturesOf(*now, type);
      for (OdUInt32 i = 1; i <= old.size(); ++i) {
        if (type == Type::kEdge && before->edge(i).degenerate) continue;
        const SubentSignature wanted = old[i - 1].movedBy(trace->motion);
        const SubentMatch match = matcher.match({type, i});
        counts.exact += match.grade == ReferenceGrade::kExact;
        counts.byLineage += match.grade == ReferenceGrade::kByLineage;
        counts.split += match.grade == ReferenceGrade::kSplit;
        counts.lost += match.grade == ReferenceGrade::kLost;
        for (const OdUInt32 image : match.images) {
          const bool right = liesOnSame(wanted, fresh[image - 1], tolerance);
          counts.wrong += !right;
          EXPECT_TRUE(right) << static_cast<int>(type) << " " << i << " -> " << image;
        }
        for (OdUInt32 n = 1; n <= fresh.size(); ++n) {
          if (!liesOnSame(wanted, fresh[n - 1], tolerance)) continue;
          if (std::ranges::find(match.images, n) != match.images.end()) continue;
          const bool missed = before->distanceTo({type, i}, middle(*now, type, n)) < 1e-6;
          counts.missed += missed;
          EXPECT_FALSE(missed) << static_cast<int>(type) << " " << i << " is also " << n;
        }
      }
    }
    return counts;
  }
};

TEST_F(VdmLineageMatcher, CutsThroughFacesEdgesAndCornersKeepWhatIsLeft) {
  const OdModelerBodyPtr start = plate();
  struct Case {
    const char* name;
    std::vector<OdModelerBodyPtr> tools;
  };
  const Case cases[] = {
      {"through hole", {cylinder(8.0, 30.0, {50.0, 50.0, -10.0})}},
      {"notch in an edge", {cylinder(8.0, 30.0, {0.0, 50.0, -10.0})}},
      {"corner cut off", {box(20.0, 20.0, 30.0, {-10.0, -10.0, -10.0})}},
      {"slot across", {box(10.0, 220.0, 5.0, {145.0, -10.0, 5.0})}},
      {"plate cut in two", {box(10.0, 220.0, 30.0, {145.0, -10.0, -5.0})}},
      {"end cut off flush", {box(100.0, 200.0, 10.0, {200.0, 0.0, 0.0})}},
      {"hole tangent to a side", {cylinder(8.0, 30.0, {8.0, 50.0, -10.0})}},
      {"pocket with a floor", {box(40.0, 40.0, 5.0, {100.0, 100.0, 5.0})}},
      {"hole through a corner", {cylinder(8.0, 30.0, {300.0, 200.0, -10.0})}},
      {"many at once", drills(10, 7)},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    m_changes.clear();
    const Counts counts = judge(start, cut(start, row.tools));
    EXPECT_EQ(counts.wrong + counts.missed, 0);
    EXPECT_GT(counts.exact + counts.byLineage + counts.split, 16);
  }
}

TEST_F(VdmLineageMatcher, FacesThatMergeAndHolesThatCloseAgain) {
  const std::vector<OdModelerBodyPtr> tools = drills(4, 3);
  const OdModelerBodyPtr start = drilled(tools);
  // A plug of exactly the hole: its walls go, top and bottom are as before.
  const OdModelerBodyPtr plug = combine(BooleanKind::kIntersect, plate(), {tools[0]});
  const OdModelerBodyPtr healed = unite(start, {plug});
  Counts counts = judge(start, healed);
  EXPECT_EQ(counts.wrong + counts.missed, 0);
  EXPECT_EQ(counts.lost, 1 + 3 + 2) << "the wall, two circles and a seam, their two vertices";
  m_changes.clear();
  const OdModelerBodyPtr longer = unite(healed, {box(50.0, 200.0, 10.0, {300.0, 0.0, 0.0})});
  counts = judge(healed, longer);
  EXPECT_EQ(counts.wrong + counts.missed, 0);
  EXPECT_EQ(counts.lost, 1 + 4 + 4) << "the face between and its boundary";
}

TEST_F(VdmLineageMatcher, ChainsAndBlends) {
  const OdModelerBodyPtr start = plate();
  OdModelerBodyPtr body = start;
  for (const OdModelerBodyPtr& tool : drills(5, 2)) body = cut(body, {tool});
  body = fillet(body, {edgeAt(*body, {0.0, 0.0, 5.0})}, 3.0);
  body = cut(body, {box(10.0, 220.0, 5.0, {145.0, -10.0, 5.0})});
  body = unite(body, {box(10.0, 10.0, 30.0, {200.0, 150.0, 0.0})});
  const Counts counts = judge(start, body);
  EXPECT_EQ(counts.wrong + counts.missed, 0);
  EXPECT_EQ(counts.lost, 1 + 2) << "the filleted edge and its ends";
}

TEST_F(VdmLineageMatcher, WaysThatPartAndMeetAgain) {
  const OdModelerBodyPtr start = plate();
  const OdModelerBodyPtr left = cut(start, {box(160.0, 220.0, 30.0, {150.0, -10.0, -5.0})});
  const OdModelerBodyPtr right = cut(start, {box(160.0, 220.0, 30.0, {-10.0, -10.0, -5.0})});
  // A way that leads elsewhere, though in between the others.
  (void)cut(left, {cylinder(8.0, 30.0, {50.0, 50.0, -10.0})});
  const OdModelerBodyPtr whole = unite(left, {right});
  const Counts counts = judge(start, whole);
  EXPECT_EQ(counts.wrong + counts.missed, 0);
  EXPECT_EQ(counts.lost, 0) << "each half came by its own way";
  const BodyLineage lineage(m_changes);
  SubentFate fate;
  lineage.trace(start, whole)->follow({Type::kFace, start->numFaces() + 1}, fate);
  EXPECT_TRUE(fate.images.empty()) << "there is no such face";
}

TEST_F(VdmLineageMatcher, PartsThatMetAndPartedAgainKeepTheirSides) {
  const OdModelerBodyPtr groove = box(20.0, 220.0, 5.0, {140.0, -10.0, 5.0});
  const OdModelerBodyPtr start = cut(plate(), {groove});
  m_changes.clear();
  const OdModelerBodyPtr whole = unite(start, {box(20.0, 200.0, 5.0, {140.0, 0.0, 5.0})});
  const OdModelerBodyPtr now = cut(whole, {groove});
  const BodyLineage lineage(m_changes);
  const std::optional<BodyTrace> trace = lineage.trace(start, now);
  ASSERT_TRUE(trace);
  LineageMatcher matcher(start, now, *trace);
  for (const OdGePoint3d& side : {OdGePoint3d(70, 100, 10), OdGePoint3d(230, 100, 10)}) {
    const SubentMatch match = matcher.match({Type::kFace, faceAt(*start, side)});
    EXPECT_EQ(match.images, std::vector{faceAt(*now, side)}) << side.x;
    EXPECT_EQ(match.grade, ReferenceGrade::kByLineage);
  }
}

TEST_F(VdmLineageMatcher, FacesOfToolsThatWereUnitedAndMovedFirst) {
  const OdModelerBodyPtr drill = cylinder(4.0, 20.0);
  const OdGeMatrix3d there = OdGeMatrix3d::translation({50.0, 50.0, -5.0});
  OdSolidChange move;
  move.kind = OdSolidChangeKind::kMoved;
  move.transform = there;
  move.before = drill;
  move.after = moved(drill, there);
  m_changes.push_back(move);
  const OdModelerBodyPtr both = unite(move.after, {box(20.0, 10.0, 20.0, {50.0, 45.0, -5.0})});
  const OdModelerBodyPtr start = plate();
  const OdModelerBodyPtr now = cut(start, {both});
  const BodyLineage lineage(m_changes);
  const OdUInt32 wall = faceOfKind(*drill, OdModelerSurfaceKind::kCylinder);
  EXPECT_EQ(lineage.facesFrom(drill, wall, now),
            std::vector<OdUInt32>{faceOfKind(*now, OdModelerSurfaceKind::kCylinder)});
  EXPECT_EQ(lineage.trace(drill, now)->motion, there);
  EXPECT_TRUE(lineage.facesFrom(drill, faceTowards(*drill, OdGeVector3d::kZAxis), now).empty());
  EXPECT_FALSE(lineage.trace(now, start).has_value()) << "not backwards";
}

}  // namespace
}  // namespace vdm_host
