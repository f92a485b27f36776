// Vectors, matrices, planes and boxes: the identities that callers rely on.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "platform/base/error.h"
#include "platform/ge/extents3d.h"
#include "platform/ge/finite.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/plane.h"

namespace {

constexpr double kPi = std::numbers::pi;

OdGeMatrix3d someMatrix(std::mt19937& random) {
  std::uniform_real_distribution<double> number(-10.0, 10.0);
  const OdGeVector3d axis(number(random), number(random), 11.0);
  const OdGePoint3d center(number(random), number(random), number(random));
  return OdGeMatrix3d::rotation(number(random), axis, center) *
         OdGeMatrix3d::scaling(OdGeScale3d(2.0, -0.5, 3.0), center) *
         OdGeMatrix3d::translation(axis);
}

TEST(OdGeVector3d, AnglesKeepTheirAccuracyNearZeroAndPi) {
  const OdGeVector3d x = OdGeVector3d::kXAxis;
  EXPECT_DOUBLE_EQ(x.angleTo({1.0, 1e-9, 0.0}), 1e-9);
  EXPECT_DOUBLE_EQ(x.angleTo({-1.0, 1e-9, 0.0}), kPi - 1e-9);
  EXPECT_DOUBLE_EQ(x.angleTo({0.0, -2.0, 0.0}, OdGeVector3d::kZAxis), 1.5 * kPi);
  EXPECT_DOUBLE_EQ(x.angleTo({0.0, -2.0, 0.0}, -OdGeVector3d::kZAxis), 0.5 * kPi);
  EXPECT_EQ(x.angleTo({}), 0.0);
}

TEST(OdGeVector3d, PerpendicularVectorsAreUnitAndPerpendicular) {
  for (const OdGeVector3d v : {OdGeVector3d::kZAxis, OdGeVector3d(0.01, 0.0, -1.0),
                               OdGeVector3d(3.0, -4.0, 5.0), OdGeVector3d::kXAxis}) {
    EXPECT_TRUE(v.perpVector().isPerpendicularTo(v));
    EXPECT_TRUE(v.perpVector().isUnitLength());
  }
}

TEST(OdGeVector3d, RefusesWhatHasNoDirection) {
  EXPECT_THROW(OdGeVector3d().normalize(), OdError);
  EXPECT_THROW(OdGeVector3d(std::nan(""), 1.0, 0.0).normalize(), OdError);
  EXPECT_FALSE(OdGeVector3d::kXAxis.isParallelTo({}));
  EXPECT_FALSE(OdGeVector3d::kXAxis.isPerpendicularTo({}));
}

TEST(OdGeMatrix3d, InverseUndoesAnyAffineTransformation) {
  std::mt19937 random(20);
  for (int i = 0; i < 100; ++i) {
    const OdGeMatrix3d m = someMatrix(random);
    EXPECT_TRUE((m * m.inverse()).isIdentity(OdGeTol(1e-9)));
    EXPECT_TRUE((m.inverse() * m).isIdentity(OdGeTol(1e-9)));
    EXPECT_NEAR(m.det(), -3.0, 1e-9);
  }
}

TEST(OdGeMatrix3d, SingularIsAMatterOfShapeAndNotOfSize) {
  const OdGeMatrix3d flat = OdGeMatrix3d::scaling(OdGeScale3d(1.0, 1.0, 0.0));
  OdGeMatrix3d result = OdGeMatrix3d::translation({1.0, 2.0, 3.0});
  const OdGeMatrix3d before = result;
  EXPECT_FALSE(flat.inverse(result));
  EXPECT_EQ(result, before);
  EXPECT_THROW(static_cast<void>(flat.inverse()), OdError);
  EXPECT_TRUE(OdGeMatrix3d::scaling(1e-30).inverse(result));
  OdGeMatrix3d broken;
  broken(1, 1) = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(broken.inverse(result));
  EXPECT_FALSE(broken.isEqualTo(broken));
}

TEST(OdGeMatrix3d, ProductAppliesTheRightFactorFirst) {
  const OdGeMatrix3d turn = OdGeMatrix3d::rotation(kPi / 2.0, OdGeVector3d::kZAxis);
  const OdGeMatrix3d move = OdGeMatrix3d::translation({10.0, 0.0, 0.0});
  EXPECT_TRUE(((move * turn) * OdGePoint3d(1.0, 0.0, 0.0)).isEqualTo({10.0, 1.0, 0.0}));
  EXPECT_EQ(OdGeMatrix3d(move).preMultBy(turn), turn * move);
  EXPECT_EQ(OdGeMatrix3d(move).postMultBy(turn), move * turn);
}

TEST(OdGeMatrix3d, RotationAndScalingKeepTheirCenter) {
  const OdGePoint3d center(1.0, -2.0, 3.0);
  EXPECT_TRUE((OdGeMatrix3d::rotation(1.0, {1.0, 2.0, 3.0}, center) * center).isEqualTo(center));
  EXPECT_TRUE((OdGeMatrix3d::scaling(7.0, center) * center).isEqualTo(center));
  EXPECT_TRUE(OdGeMatrix3d::scaling(7.0, center).isUniScaledOrtho());
  EXPECT_FALSE(OdGeMatrix3d::scaling(OdGeScale3d(1.0, 2.0, 1.0)).isUniScaledOrtho());
}

TEST(OdGeMatrix3d, MirroringIsItsOwnInverseAndKeepsThePlane) {
  const OdGePlane plane({1.0, 2.0, 3.0}, {1.0, 1.0, 0.0}, {0.0, 0.0, 2.0});
  const OdGeMatrix3d m = OdGeMatrix3d::mirroring(plane);
  EXPECT_TRUE((m * m).isIdentity());
  EXPECT_NEAR(m.det(), -1.0, 1e-12);
  const OdGePoint3d on = plane.origin() + plane.uAxis() * 4.0 - plane.vAxis() * 5.0;
  EXPECT_TRUE((m * on).isEqualTo(on));
  const OdGePoint3d off(9.0, 0.0, 1.0);
  EXPECT_NEAR(plane.signedDistanceTo(m * off), -plane.signedDistanceTo(off), 1e-12);
}

TEST(OdGeMatrix3d, CoordinateSystemRoundTripsAndElementsAreRows) {
  std::mt19937 random(21);
  const OdGeMatrix3d m = someMatrix(random);
  OdGePoint3d origin;
  OdGeVector3d x, y, z;
  m.getCoordSystem(origin, x, y, z);
  EXPECT_EQ(OdGeMatrix3d().setCoordSystem(origin, x, y, z), m);
  EXPECT_EQ(m.getElements()[3], origin.x);
  EXPECT_EQ(m.getElements()[4], x.y);
}

// Every number counts, by itself: the sum and the length of the last values overflow.
TEST(OdGeIsFinite, EveryNumberOfAValueCounts) {
  const double large = std::numeric_limits<double>::max();
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(), -HUGE_VAL}) {
    for (unsigned at = 0; at < 16; ++at) {
      OdGeMatrix3d m;
      m.getElements()[at] = bad;
      EXPECT_FALSE(odgeIsFinite(m)) << "entry " << at;
    }
    for (unsigned at = 0; at < 3; ++at) {
      const auto put = [&](unsigned index) { return index == at ? bad : large; };
      EXPECT_FALSE(odgeIsFinite(OdGePoint3d(put(0), put(1), put(2)))) << at;
      EXPECT_FALSE(odgeIsFinite(OdGeVector3d(put(0), put(1), put(2)))) << at;
      EXPECT_FALSE(odgeIsFinite(OdGeScale3d(put(0), put(1), put(2)))) << at;
      if (at == 2) continue;
      EXPECT_FALSE(odgeIsFinite(OdGePoint2d(put(0), put(1)))) << at;
      EXPECT_FALSE(odgeIsFinite(OdGeVector2d(put(0), put(1)))) << at;
    }
  }
  EXPECT_TRUE(odgeIsFinite(OdGeMatrix3d::scaling(large)));
  EXPECT_TRUE(odgeIsFinite(OdGePoint3d(large, large, large)));
  EXPECT_TRUE(odgeIsFinite(OdGeVector3d(-large, -large, -large)));
  EXPECT_TRUE(odgeIsFinite(OdGeScale3d(large)));
  EXPECT_TRUE(odgeIsFinite(OdGePoint2d(large, large)));
  EXPECT_TRUE(odgeIsFinite(OdGeVector2d(-large, large)));
}

TEST(OdGePlane, NormalFollowsTheAxesAndDegenerateAxesAreRefused) {
  const OdGePlane plane({0.0, 0.0, 5.0}, OdGeVector3d::kXAxis * 3.0, {1.0, 1.0, 0.0});
  EXPECT_DOUBLE_EQ(plane.signedDistanceTo({7.0, 7.0, 2.0}), -3.0);
  EXPECT_THROW(OdGePlane({}, OdGeVector3d::kXAxis, OdGeVector3d::kXAxis * -2.0), OdError);
  EXPECT_THROW(OdGePlane({}, OdGeVector3d()), OdError);
}

TEST(OdGeExtents3d, EmptyBoxesStayEmptyAndAddNothing) {
  OdGeExtents3d box;
  EXPECT_FALSE(box.expandBy(1.0).transformBy(OdGeMatrix3d::scaling(2.0)).isValidExtents());
  box.addPoint({1.0, 2.0, 3.0}).addExt({});
  EXPECT_EQ(box.minPoint(), box.maxPoint());
  box.addPoint({}).transformBy(OdGeMatrix3d::rotation(kPi / 2.0, OdGeVector3d::kZAxis));
  EXPECT_TRUE(box.isEqualTo({{-2.0, 0.0, 0.0}, {0.0, 1.0, 3.0}}));
}

}  // namespace
