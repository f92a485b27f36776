// Tests of curves: directions, bulges, conversion, parameters.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/base/error.h"
#include "platform/entities/arc.h"
#include "platform/entities/circle.h"
#include "platform/entities/ellipse.h"
#include "platform/entities/line.h"
#include "platform/entities/polyline.h"
#include "platform/filer/file_filer.h"
#include "tests/platform/entities/entity_samples.h"
#include "tests/support/drawing_testing.h"

namespace {

using std::numbers::pi;

class CurveTest : public DrawingVerbs, public testing::Test {
 protected:
  static OdDbArcPtr makeArc(double start, double end) {
    const OdDbArcPtr arc = OdDbArc::createObject();
    arc->setCenter({2, 0, 0});
    arc->setRadius(3);
    arc->setStartAngle(start);
    arc->setEndAngle(end);
    return arc;
  }
  static OdGePoint3d at(const OdDbCurve& curve, double share) {
    double start = 0.0;
    double end = 0.0;
    OdGePoint3d point;
    EXPECT_EQ(curve.getStartParam(start), eOk);
    EXPECT_EQ(curve.getEndParam(end), eOk);
    EXPECT_EQ(curve.getPointAtParam(start + (end - start) * share, point), eOk);
    return point;
  }
  static OdDbPolylinePtr bulged(double bulge) {
    const OdDbPolylinePtr run = OdDbPolyline::createObject();
    run->addVertexAt(0, {0, 0}, bulge);
    run->addVertexAt(1, {4, 0});
    return run;
  }
};

// Mirrored in a line of its plane an arc keeps its normal and runs from the image of its end.
// Mirrored in the plane itself it is seen from the other side and stays where it is.
TEST_F(CurveTest, ArcsKeepTheirPointsInAMirror) {
  const OdDbArcPtr across = makeArc(0.2, 1.4);
  const OdGePoint3d start = at(*across, 0.0);
  ASSERT_EQ(across->transformBy(OdGeMatrix3d::mirroring(OdGePlane::kYZPlane)), eOk);
  EXPECT_EQ(across->normal(), OdGeVector3d::kZAxis);
  EXPECT_NEAR(across->startAngle(), pi - 1.4, 1e-12);
  EXPECT_NEAR(across->endAngle(), pi - 0.2, 1e-12);
  EXPECT_TRUE(at(*across, 1.0).isEqualTo({-start.x, start.y, 0}));

  const OdDbArcPtr through = makeArc(0.2, 1.4);
  through->setNormal(-OdGeVector3d::kZAxis);
  const OdGePoint3d middle = at(*through, 0.5);
  ASSERT_EQ(through->transformBy(OdGeMatrix3d::mirroring(OdGePlane::kXYPlane)), eOk);
  EXPECT_EQ(through->normal(), OdGeVector3d::kZAxis);
  EXPECT_TRUE(at(*through, 0.5).isEqualTo(middle));
}

TEST_F(CurveTest, EqualAnglesAreAWholeCircleAndAnglesAreKeptWithinATurn) {
  const OdDbArcPtr arc = makeArc(1.0, 1.0);
  EXPECT_DOUBLE_EQ(arc->totalAngle(), 2 * pi);
  EXPECT_TRUE(arc->isClosed());
  arc->setStartAngle(-pi / 2);
  EXPECT_DOUBLE_EQ(arc->startAngle(), 1.5 * pi);
  EXPECT_NEAR(arc->totalAngle(), 1.0 + pi / 2, 1e-12);
  EXPECT_THROW(arc->setRadius(0.0), OdError);
  EXPECT_THROW(arc->setStartAngle(NAN), OdError);
}

// A positive bulge lies to the right of the way; 1 is half a circle.
TEST_F(CurveTest, BulgesHaveTheSignOfTheirTurn) {
  for (const double bulge : {1.0, -1.0, 0.25, -3.0}) {
    const OdDbPolylinePtr run = bulged(bulge);
    const OdGePoint3d middle = at(*run, 0.5);
    EXPECT_NEAR(middle.x, 2.0, 1e-12);
    EXPECT_NEAR(middle.y, -2.0 * bulge, 1e-12) << "the height is the bulge times half the chord";
    OdRxObjectPtrArray parts;
    ASSERT_EQ(run->explode(parts), eOk);
    const OdDbArcPtr arc = OdDbArc::cast(parts[0]);
    ASSERT_FALSE(arc.isNull());
    EXPECT_NEAR(arc->totalAngle(), 4 * std::atan(std::abs(bulge)), 1e-12);
    EXPECT_NEAR(arc->length(), run->length(), 1e-12);
    EXPECT_TRUE(at(*arc, 0.5).isEqualTo(middle));
    ASSERT_EQ(run->transformBy(OdGeMatrix3d::mirroring(OdGePlane::kZXPlane)), eOk);
    EXPECT_EQ(run->getBulgeAt(0), -bulge);
  }
}

// The worked example of docs/stored-entities.md.
TEST_F(CurveTest, APolylineIsStoredAsDocumented) {
  OdDbHostAppServices host;
  const OdDbDatabasePtr drawing = host.createDatabase();
  const OdDbObjectId id = addTo(drawing->getModelSpaceId(), bulged(0.5));
  OdDbFileWriter filer(drawing);
  open<OdDbPolyline>(id)->dwgOutFields(&filer);
  std::vector<OdUInt8> bytes;
  filer.assemble(bytes);
  const auto zeros = [](std::size_t count) { return std::string(count, '\0'); };
  const std::string wanted = std::string("\x01\x21\x00", 3) +
                             std::string("\x01\x01\xC0\0\0\0\0\x01\0\0\x01", 11) + zeros(16) +
                             zeros(22) + "\xF0\x3F" + zeros(1) + "\x04" + zeros(16) + zeros(6) +
                             "\x10\x40" + zeros(8) + "\x04" + zeros(6) + "\xE0\x3F" + zeros(9);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), wanted);
}

TEST_F(CurveTest, VerticesCarryTheirBulgesAndWidthsThroughEdits) {
  const OdDbPolylinePtr run = bulged(0.5);
  run->setWidthsAt(1, 0.2, 0.4);
  run->addVertexAt(1, {9, 9}, -2.0);
  run->addVertexAt(0, {-1, -1});
  double startWidth = 0.0;
  double endWidth = 0.0;
  run->getWidthsAt(3, startWidth, endWidth);
  EXPECT_EQ(startWidth, 0.2);
  EXPECT_EQ(endWidth, 0.4);
  EXPECT_EQ(run->getBulgeAt(1), 0.5);
  EXPECT_EQ(run->getBulgeAt(2), -2.0);
  run->removeVertexAt(3);
  EXPECT_FALSE(run->hasWidth()) << "only zeros are left";
  run->removeVertexAt(1);
  run->setBulgeAt(1, 0.0);
  EXPECT_FALSE(run->hasBulges());
  EXPECT_THROW(run->removeVertexAt(7), OdError_InvalidIndex);
  EXPECT_THROW(run->addVertexAt(0, {0, 0}, 0.0, -1.0), OdError);
}

// An uneven scale is refused by what cannot hold it; a copy of another class can.
TEST_F(CurveTest, UnevenScalesMakeEllipsesOfCircles) {
  const OdGeMatrix3d uneven = OdGeMatrix3d::scaling(OdGeScale3d(2, 0.5, 1)) *
                              OdGeMatrix3d::rotation(0.4, OdGeVector3d(1, 1, 1));
  const OdDbArcPtr arc = makeArc(0.5, 2.5);
  EXPECT_EQ(arc->transformBy(uneven), eCannotScaleNonUniformly);
  OdDbEntityPtr copy;
  ASSERT_EQ(arc->getTransformedCopy(uneven, copy), eOk);
  const OdDbEllipsePtr ellipse = OdDbEllipse::cast(copy);
  ASSERT_FALSE(ellipse.isNull());
  for (const double share : {0.0, 0.3, 1.0}) {
    EXPECT_TRUE(at(*ellipse, share).isEqualTo(uneven * at(*arc, share), OdGeTol(1e-9)));
  }
  EXPECT_LE(ellipse->radiusRatio(), 1.0);
  EXPECT_EQ(bulged(0.5)->transformBy(uneven), eCannotScaleNonUniformly);
  EXPECT_EQ(bulged(0.0)->transformBy(uneven), eOk);
  // Along the normal a circle takes any scale.
  EXPECT_EQ(makeArc(0, 1)->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(1, 1, 5))), eOk);
}

TEST_F(CurveTest, EllipsesTellAnglesFromParameters) {
  const OdDbEllipsePtr ellipse = OdDbEllipse::createObject();
  ellipse->set({1, 2, 0}, OdGeVector3d::kZAxis, {0, 4, 0}, 0.5, pi / 4, 5 * pi / 2);
  EXPECT_TRUE(at(*ellipse, 0.0).isEqualTo({1 - std::sqrt(2.0), 2 + 2 * std::sqrt(2.0), 0}));
  EXPECT_NEAR(ellipse->startAngle(), std::atan(0.5), 1e-12);
  EXPECT_NEAR(ellipse->paramAtAngle(ellipse->endAngle()), ellipse->endParam(), 1e-12);
  EXPECT_DOUBLE_EQ(ellipse->endParam(), pi / 4 + 2 * pi) << "more than a turn is a turn";
  ellipse->set({}, OdGeVector3d::kZAxis, {3, 0, 0}, 1.0);
  EXPECT_NEAR(ellipse->length(), 6 * pi, 1e-9);
  EXPECT_THROW(ellipse->setRadiusRatio(1.5), OdError);
  EXPECT_THROW(ellipse->set({}, OdGeVector3d::kZAxis, {3, 0, 3}, 1.0), OdError);
}

// Chords stay within the deviation that is asked for.
TEST_F(CurveTest, ChordsKeepTheirDeviation) {
  const OdDbArcPtr arc = makeArc(0.1, 5.0);
  for (const double deviation : {0.5, 0.01, 1e-5}) {
    const std::vector<OdGePoint3d> points = arc->chords(deviation);
    double most = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
      const OdGePoint3d middle = points[i - 1] + (points[i] - points[i - 1]) / 2;
      most = std::max(most, 3.0 - middle.distanceTo({2, 0, 0}));
    }
    EXPECT_LE(most, deviation);
    EXPECT_GT(most, deviation < 0.1 ? deviation / 4 : 0.0) << "and no more chords than that needs";
  }
}

TEST_F(CurveTest, ThicknessDrawsABandAndCountsInTheExtents) {
  const OdDbLinePtr line = OdDbLine::createObject();
  line->setEndPoint({3, 0, 0});
  line->setThickness(-2);
  OdGeExtents3d box;
  ASSERT_EQ(line->getGeomExtents(box), eOk);
  EXPECT_EQ(box.minPoint(), OdGePoint3d(0, 0, -2));
  EXPECT_GT(drawnPoints(*line).size(), 4u);
}

// A shear would slant what a thickness draws, and no class can hold that.
TEST_F(CurveTest, ThicknessesAreNotSlanted) {
  OdGeMatrix3d shear;
  shear(0, 2) = 0.5;
  for (const double thickness : {0.0, 2.0}) {
    const OdResult expected = thickness == 0.0 ? eOk : eCannotScaleNonUniformly;
    const auto circle = OdDbCircle::createObject();
    circle->setThickness(thickness);
    EXPECT_EQ(circle->transformBy(shear), expected);
    const auto run = OdDbPolyline::createObject();
    run->addVertexAt(0, {0, 0});
    run->addVertexAt(1, {1, 0});
    run->setThickness(thickness);
    EXPECT_EQ(run->transformBy(shear), expected);
  }
}

}  // namespace
