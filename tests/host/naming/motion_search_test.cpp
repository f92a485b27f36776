// The motions that may lay one body on another, and the readings of the faces that are left, law by
// law.
#include "host/naming/motion_search.h"

#include <algorithm>
#include <numbers>
#include <string>

#include "host/naming/reading.h"
#include "tests/host/naming/naming_fixture.h"

namespace vdm_host {
namespace {

class VdmMotionSearch : public NamingTest {
 protected:
  /// The motions of the readings that are left.
  static std::vector<OdGeMatrix3d> motions(const OdModelerBodyPtr& before,
                                           const OdModelerBodyPtr& now) {
    const SignatureLevel old(*before, Type::kFace);
    const SignatureLevel fresh(*now, Type::kFace);
    const PlaceGrid grid(fresh.items);
    const MatchTolerance tolerance = MatchTolerance::of(*before, *now);
    const FaceScene scene{*before, *now, old, fresh, grid, tolerance};
    std::vector<FaceReading> readings;
    for (const BodyMotion& motion : findMotions(old.items, fresh.items, grid, tolerance)) {
      readings.push_back(readFaces(scene, motion));
    }
    std::vector<OdGeMatrix3d> found;
    for (const FaceReading& reading : weighReadings(std::move(readings), scene)) {
      found.push_back(reading.motion.matrix);
    }
    return found;
  }
  static OdGeMatrix3d by(double x, double y = 0.0) {
    return OdGeMatrix3d::translation({x, y, 0.0});
  }
  static bool isOnly(const std::vector<OdGeMatrix3d>& found, const OdGeMatrix3d& motion) {
    return found.size() == 1 && found.front().isEqualTo(motion, OdGeTol(1e-6));
  }
  static bool has(const std::vector<OdGeMatrix3d>& found, const OdGeMatrix3d& motion) {
    return std::ranges::any_of(
        found, [&](const OdGeMatrix3d& m) { return m.isEqualTo(motion, OdGeTol(1e-6)); });
  }
  /// Blind holes, no two alike and on no line: with them the plate has no symmetry.
  static std::vector<OdModelerBodyPtr> unequalHoles() {
    std::vector<OdModelerBodyPtr> tools;
    for (int i = 0; i < 4; ++i) {
      tools.push_back(cylinder(3.0 + 0.5 * i, 20.0, {30.0 + 30.0 * i, 40.0 + 9.0 * i * i, 4.0}));
    }
    return tools;
  }
};

TEST_F(VdmMotionSearch, FeaturesThatMoveLeaveTheBodyInItsPlace) {
  const OdModelerBodyPtr before = drilled(unequalHoles());
  EXPECT_TRUE(isOnly(motions(before, moved(before, by(700.0, 20.0))), by(700.0, 20.0)));
  // The holes move within the plate: the motion lays 10 of 14 faces, and the sides stay.
  std::vector<OdModelerBodyPtr> tools;
  for (const OdModelerBodyPtr& tool : unequalHoles()) tools.push_back(moved(tool, by(20.0)));
  EXPECT_TRUE(isOnly(motions(before, drilled(tools)), {}));
  const auto slotted = [](double x) {
    return combine(BooleanKind::kSubtract, plate(), {box(2.0, 40.0, 20.0, {x, 50.0, -5.0})});
  };
  EXPECT_TRUE(isOnly(motions(slotted(100.0), slotted(95.0)), {}));
  // A row of ten equal holes is displaced by its pitch: "none" lays nine of them and the plate.
  EXPECT_TRUE(isOnly(motions(drilled(drills(10, 1, 30.0)), drilled(drills(10, 1, 50.0))), {}));
}

TEST_F(VdmMotionSearch, EqualMotionsAreAllLeftAndMirrorsYieldToTurns) {
  const OdModelerBodyPtr block = box(100.0, 60.0, 10.0);
  EXPECT_EQ(motions(block, moved(block, by(500.0))).size(), 4u) << "turns of a box";
  EXPECT_TRUE(isOnly(motions(block, block), {})) << "in its place, none wins";
  // The whole plate moves by the pitch of its holes, three of which lie as before.
  const OdModelerBodyPtr four = drilled(drills(4, 1, 90.0));
  const std::vector<OdGeMatrix3d> whole = motions(four, moved(four, by(20.0)));
  EXPECT_TRUE(has(whole, by(20.0)));
  EXPECT_FALSE(has(whole, {}));
}

TEST_F(VdmMotionSearch, OfSeveralTheOneThatMovesVeryLittleIsTaken) {
  const OdModelerBodyPtr block = box(100.0, 60.0, 10.0);
  EXPECT_TRUE(isOnly(motions(block, moved(block, by(0.5))), by(0.5)));
  EXPECT_GT(motions(block, moved(block, by(3.0))).size(), 1u) << "2.6 % of the size";
}

TEST_F(VdmMotionSearch, MirrorsTurnsAndScalingsAreFoundApart) {
  const OdModelerBodyPtr before = drilled(unequalHoles());
  const OdGeMatrix3d moves[] = {
      OdGeMatrix3d::mirroring(OdGePlane(OdGePoint3d(400.0, 0.0, 0.0), OdGeVector3d::kXAxis)),
      OdGeMatrix3d::rotation(std::numbers::pi / 3.0, OdGeVector3d::kZAxis, {500.0, 0.0, 0.0}),
      OdGeMatrix3d::scaling(25.4),
      OdGeMatrix3d::scaling(1.02, {150.0, 100.0, 5.0}),
  };
  for (const OdGeMatrix3d& motion : moves) {
    EXPECT_TRUE(isOnly(motions(before, moved(before, motion)), motion));
  }
}

TEST_F(VdmMotionSearch, MotionsInWords) {
  const auto text = [](const OdGeMatrix3d& matrix, MotionKind kind) {
    return std::string(textOf({matrix, 0, kind}).utf8());
  };
  const OdGeMatrix3d quarter =
      OdGeMatrix3d::rotation(std::numbers::pi / 2.0, OdGeVector3d::kZAxis, {5.0, 15.0, 7.0});
  EXPECT_EQ(text(by(10.0, -2.0), MotionKind::kProper), "moved by (10, -2, 0)");
  EXPECT_EQ(text(quarter, MotionKind::kProper),
            "turned by 90 deg about (0, 0, 1) through (5, 15, 0)");
  const OdGeMatrix3d half =
      OdGeMatrix3d::translation({3.0, 0.0, 0.0}) *
      OdGeMatrix3d::rotation(std::numbers::pi, OdGeVector3d::kXAxis, {0.0, 1.0, 2.0});
  EXPECT_EQ(text(half, MotionKind::kProper),
            "turned by 180 deg about (1, 0, 0) through (0, 1, 2) and moved by 3 along it");
  EXPECT_EQ(
      text(quarter * OdGeMatrix3d::scaling(25.4), MotionKind::kScaling),
      "scaled by 25.4 (another unit?), then turned by 90 deg about (0, 0, 1) through (5, 15, 0)");
}

}  // namespace
}  // namespace vdm_host
