// Planar faces measured by their edges: held against the modeller's own integrals.
#include "host/naming/plane_signature.h"

#include "tests/host/naming/naming_fixture.h"

namespace vdm_host {
namespace {

class VdmPlaneSignature : public NamingTest {
 protected:
  /// Measures each face whose plane is known; `planes` counts those that could be.
  static void expectAsModeller(const OdModelerBody& body, int planes) {
    const double length = MatchTolerance::of(body).length;
    for (OdUInt32 i = 1; i <= body.numFaces(); ++i) {
      SCOPED_TRACE(i);
      const SubentSignature whole = signatureOf(body, {Type::kFace, i});
      // What is known is the plane, with another outline.
      SubentSignature known = whole;
      known.place = known.anchor = whole.anchor + whole.direction.perpVector() * 7.0;
      known.size = 1.0;
      known.bounds = 99;
      const std::optional<SubentSignature> found = signatureOfPlane(body, i, known);
      if (!found) continue;
      --planes;
      EXPECT_NEAR(found->size, whole.size, 1e-7 * whole.size);
      EXPECT_LT(found->place.distanceTo(whole.place), length);
      EXPECT_LT(found->anchor.distanceTo(whole.anchor), length);
      EXPECT_EQ(found->bounds, whole.bounds);
      EXPECT_EQ(found->neighbours, whole.neighbours);
    }
    EXPECT_EQ(planes, 0);
  }
};

TEST_F(VdmPlaneSignature, LinesArcsAndHolesInAnyPlace) {
  const OdModelerBodyPtr notched =
      combine(BooleanKind::kSubtract, plate(),
              {cylinder(20.0, 30.0, {0.0, 50.0, -5.0}), cylinder(30.0, 30.0, {290.0, 100.0, -5.0}),
               cylinder(5.0, 30.0, {150.0, 100.0, -5.0}), cylinder(9.0, 30.0, {300.0, 200.0, -5.0}),
               box(20.0, 10.0, 5.0, {60.0, 150.0, 5.0})});
  const OdModelerBodyPtr bossed =
      combine(BooleanKind::kUnite, notched, {cylinder(40.0, 10.0, {250.0, 0.0, 0.0})});
  int planes = 0;
  for (OdUInt32 i = 1; i <= bossed->numFaces(); ++i) {
    planes += bossed->surfaceKind(i) == OdModelerSurfaceKind::kPlane ? 1 : 0;
  }
  EXPECT_GT(planes, 10);
  expectAsModeller(*bossed, planes);
  const OdGeMatrix3d tilted = OdGeMatrix3d::translation({5000.0, -3000.0, 800.0}) *
                              OdGeMatrix3d::rotation(1.1, OdGeVector3d(1.0, 2.0, -0.5).normal());
  expectAsModeller(*moved(bossed, tilted), planes);
}

TEST_F(VdmPlaneSignature, WhatItCannotMeasureIsLeftToTheModeller) {
  const OdModelerBodyPtr body = plate();
  const OdUInt32 top = faceAt(*body, {150, 100, 10});
  const SubentSignature known = signatureOf(*body, {Type::kFace, top});
  EXPECT_TRUE(signatureOfPlane(*body, top, known));
  EXPECT_FALSE(signatureOfPlane(*body, faceAt(*body, {150, 100, 0}), known)) << "another plane";
  EXPECT_FALSE(signatureOfPlane(*body, top, signatureOf(*body, {Type::kEdge, 1})));
  const OdModelerBodyPtr shaft = cylinder(4.0, 20.0);
  const OdUInt32 wall = faceOfKind(*shaft, OdModelerSurfaceKind::kCylinder);
  EXPECT_FALSE(signatureOfPlane(*shaft, wall, signatureOf(*shaft, {Type::kFace, wall})));
  // A slanted cut through a cylinder is bounded by an ellipse.
  const OdModelerBodyPtr slanted =
      combine(BooleanKind::kSubtract, shaft,
              {moved(box(40.0, 40.0, 40.0, {-20.0, -20.0, 0.0}),
                     OdGeMatrix3d::translation({0.0, 0.0, 10.0}) *
                         OdGeMatrix3d::rotation(0.4, OdGeVector3d::kXAxis))});
  const OdUInt32 cut = faceAt(*slanted, {0, 0, 10});
  EXPECT_FALSE(signatureOfPlane(*slanted, cut, signatureOf(*slanted, {Type::kFace, cut})));
}

}  // namespace
}  // namespace vdm_host
