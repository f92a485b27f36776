// Openings that are cut again, law by law, without a drawing.
#include "host/naming/respawn_matcher.h"

#include <algorithm>

#include "tests/host/naming/naming_fixture.h"

namespace vdm_host {
namespace {

/// A plate with openings that one edit closes and cuts again.
class VdmRespawnMatcher : public NamingTest {
 protected:
  static OdModelerBodyPtr slot(double x = 100.0, double y = 50.0) {
    return box(10.0, 40.0, 20.0, {x, y, -5.0});
  }
  static OdModelerBodyPtr pieceOf(const OdModelerBodyPtr& tool) {
    return combine(BooleanKind::kIntersect, plate(), {tool});
  }
  /// What the face of a tool at `toolPoint` left at `oldPoint` and leaves in `now`.
  [[nodiscard]] FaceRespawn row(OdUInt64 feature, const OdModelerBodyPtr& tool,
                                const OdGePoint3d& toolPoint, const OdModelerBodyPtr& before,
                                const OdGePoint3d& oldPoint, const OdModelerBodyPtr& now) const {
    FaceRespawn result;
    result.feature = feature;
    result.toolFace = faceAt(*tool, toolPoint);
    result.oldFace = faceAt(*before, oldPoint);
    result.newFaces = BodyLineage(m_changes).facesFrom(tool, result.toolFace, now);
    return result;
  }
  [[nodiscard]] SubentMatch matchOf(const std::vector<FaceRespawn>& rows,
                                    const OdModelerBodyPtr& before, const OdModelerBodyPtr& now,
                                    OdModelerSubent subent) const {
    const BodyLineage lineage(m_changes);
    const std::optional<BodyTrace> trace = lineage.trace(before, now);
    LineageMatcher byLineage(before, now, *trace);
    RespawnMatcher matcher(rows, *before, *now, byLineage);
    const std::optional<RespawnMatch> found = matcher.match(subent);
    return found ? found->match : SubentMatch();
  }
};

TEST_F(VdmRespawnMatcher, Law2TakesThePieceOfAnEdgeThatIsNearestByFar) {
  const OdModelerBodyPtr tool = slot();
  const OdModelerBodyPtr before = cut(plate(), {tool});
  const OdModelerSubent edge{Type::kEdge, edgeAt(*before, {100, 70, 10})};
  struct Case {
    double notchAt;  // parts the edge from y = 50 to y = 90
    double taken;    // a point of the piece that is taken; 0 when it is ambiguous
  };
  // Middles are 6 and 16 away from the old one, 8.5 and 13.5, 16 and 6.
  for (const Case& one : {Case{78.0, 60.0}, Case{73.0, 0.0}, Case{58.0, 80.0}}) {
    SCOPED_TRACE(one.notchAt);
    m_changes.clear();
    const OdModelerBodyPtr again = cut(unite(before, {pieceOf(tool)}), {tool});
    const OdModelerBodyPtr now = cut(again, {box(20.0, 4.0, 5.0, {90.0, one.notchAt, 5.0})});
    const FaceRespawn wall = row(1, tool, {100, 70, 5}, before, {100, 70, 5}, now);
    ASSERT_EQ(wall.newFaces.size(), 1u);
    const SubentMatch match = matchOf({wall}, before, now, edge);
    if (one.taken == 0.0) {
      EXPECT_EQ(match.grade, ReferenceGrade::kAmbiguous);
      continue;
    }
    EXPECT_EQ(match.images, (std::vector{edgeAt(*now, {100, one.taken, 10})}));
  }
}

TEST_F(VdmRespawnMatcher, Law2RefusesAPlaceWhereAnotherFaceMeets) {
  // A notch swallows the vertex of a hole's rim, and makes two others on the rim: one is near.
  const OdModelerBodyPtr tool = cylinder(4.0, 20.0, {100.0, 100.0, -5.0});
  const OdModelerBodyPtr before = cut(plate(), {tool});
  const OdModelerSubent vertex{Type::kVertex, vertexAt(*before, {104, 100, 10})};
  ASSERT_NE(vertex.index, 0u);
  m_changes.clear();
  const OdModelerBodyPtr again = cut(unite(before, {pieceOf(tool)}), {tool});
  const OdModelerBodyPtr now = cut(again, {box(8.0, 4.0, 5.0, {102.0, 99.0, 5.0})});
  const FaceRespawn wall = row(1, tool, {96, 100, 5}, before, {96, 100, 5}, now);
  ASSERT_EQ(wall.newFaces.size(), 1u);
  const SubentMatch match = matchOf({wall}, before, now, vertex);
  EXPECT_TRUE(match.images.empty());
  EXPECT_EQ(match.grade, ReferenceGrade::kLost);
}

TEST_F(VdmRespawnMatcher, Law3ComesBackOnlyToTheExactPlace) {
  const OdModelerBodyPtr tool = slot();
  const OdModelerBodyPtr open = cut(plate(), {tool});
  const SubentSignature edge = signatureOf(*open, {Type::kEdge, edgeAt(*open, {100, 70, 10})});
  const SubentSignature face = signatureOf(*open, {Type::kFace, faceAt(*open, {100, 70, 5})});
  const OdModelerBodyPtr before = unite(open, {pieceOf(tool)});
  struct Case {
    double width;  // of a cut that shortens the slot's wall; 0 for none
    bool comesBack;
  };
  for (const Case& one : {Case{0.0, true}, Case{15.0, false}}) {
    m_changes.clear();
    OdModelerBodyPtr now = cut(before, {tool});
    if (one.width > 0.0) now = cut(now, {box(20.0, one.width, 20.0, {90.0, 50.0, -5.0})});
    FaceRespawn wall = row(1, tool, {100, 70, 5}, before, {100, 70, 5}, now);
    wall.oldFace = 0;
    const BodyLineage lineage(m_changes);
    const std::optional<BodyTrace> trace = lineage.trace(before, now);
    LineageMatcher byLineage(before, now, *trace);
    const std::vector<FaceRespawn> rows{wall};
    RespawnMatcher matcher(rows, *before, *now, byLineage);
    const LineageBirth birth{wall.feature, wall.toolFace};
    const std::optional<RespawnMatch> found = matcher.comeBack(birth, edge);
    ASSERT_TRUE(found);
    EXPECT_EQ(!found->match.images.empty(), one.comesBack) << one.width;
    EXPECT_EQ(matcher.comeBack(birth, face)->match.images, wall.newFaces) << "a face by its name";
    EXPECT_FALSE(matcher.comeBack({OdDbHandle(2), wall.toolFace}, face)) << "another feature";
    EXPECT_FALSE(matcher.comeBack({wall.feature, wall.toolFace + 1}, face)) << "another face";
  }
}

TEST_F(VdmRespawnMatcher, Law4WhatAnotherToolLeftInTheOldPlaceIsNotTheOldFace) {
  // Of two slots one is closed, and the other is cut in its place.
  const OdModelerBodyPtr first = slot(100.0);
  const OdModelerBodyPtr second = slot(150.0);
  const OdModelerBodyPtr before = cut(plate(), {first, second});
  m_changes.clear();
  const OdModelerBodyPtr secondNow = slot(100.0);
  const OdModelerBodyPtr healed = unite(before, {pieceOf(first), pieceOf(second)});
  const OdModelerBodyPtr now = cut(healed, {secondNow});
  const OdUInt32 wallNow = faceAt(*now, {100, 70, 5});
  FaceRespawn closed;
  closed.feature = 1;
  closed.toolFace = faceAt(*first, {100, 70, 5});
  closed.oldFace = faceAt(*before, {100, 70, 5});
  FaceRespawn displaced = row(2, secondNow, {100, 70, 5}, before, {150, 70, 5}, now);
  displaced.motion = OdGeMatrix3d::translation({-50.0, 0.0, 0.0});
  ASSERT_EQ(displaced.newFaces, std::vector{wallNow});
  const std::vector<FaceRespawn> rows{closed, displaced};
  const SubentMatch old = matchOf(rows, before, now, {Type::kFace, closed.oldFace});
  EXPECT_TRUE(old.images.empty());
  EXPECT_EQ(old.grade, ReferenceGrade::kLost);
  EXPECT_EQ(matchOf(rows, before, now, {Type::kFace, displaced.oldFace}).images,
            std::vector{wallNow});
  const OdModelerSubent edge{Type::kEdge, edgeAt(*before, {100, 70, 10})};
  EXPECT_TRUE(matchOf(rows, before, now, edge).images.empty()) << "nor are its edges";
}

TEST_F(VdmRespawnMatcher, Law1AFaceInWhichOpeningsHadMergedIsAllOfTheirs) {
  // Two slots end to end share the wall at x = 100; one of them is cut elsewhere.
  const OdModelerBodyPtr first = slot(100.0, 50.0);
  const OdModelerBodyPtr second = slot(100.0, 90.0);
  const OdModelerBodyPtr before = cut(plate(), {first, second});
  const OdGePoint3d place(100, 70, 5);
  ASSERT_EQ(faceAt(*before, place), faceAt(*before, {100, 110, 5})) << "one wall";
  m_changes.clear();
  const OdModelerBodyPtr secondNow = slot(200.0, 90.0);
  const OdModelerBodyPtr healed = unite(before, {pieceOf(first), pieceOf(second)});
  const OdModelerBodyPtr now = cut(healed, {first, secondNow});
  const FaceRespawn one = row(1, first, place, before, place, now);
  FaceRespawn two = row(2, secondNow, {200, 110, 5}, before, place, now);
  two.motion = OdGeMatrix3d::translation({100.0, 0.0, 0.0});
  std::vector<OdUInt32> both{faceAt(*now, place), faceAt(*now, {200, 110, 5})};
  for (const std::vector<FaceRespawn>& rows : {std::vector{one, two}, std::vector{two, one}}) {
    SubentMatch match = matchOf(rows, before, now, {Type::kFace, one.oldFace});
    EXPECT_EQ(match.grade, ReferenceGrade::kSplit);
    std::ranges::sort(match.images);
    std::ranges::sort(both);
    EXPECT_EQ(match.images, both);
  }
  // Where one of the two is closed for good, the wall is what the other left.
  FaceRespawn closed = two;
  closed.newFaces.clear();
  for (const std::vector<FaceRespawn>& rows :
       {std::vector{one, closed}, std::vector{closed, one}}) {
    EXPECT_EQ(matchOf(rows, before, now, {Type::kFace, one.oldFace}).images, one.newFaces);
  }
}

}  // namespace
}  // namespace vdm_host
