// Surfaces and curves in free form are described by what they are.
#include <BRepBuilderAPI_NurbsConvert.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <numbers>

#include "platform/modeler_occt/occt_bridge.h"
#include "tests/support/modeler_testing.h"

namespace {

class OdRecognisedSurface : public ModelerTest {
 protected:
  static OdModelerBodyPtr splined(const TopoDS_Shape& shape) {
    return odBodyFromOcct(BRepBuilderAPI_NurbsConvert(shape, /*Copy=*/Standard_True).Shape());
  }

  /// All that signatures and users go by is as before; curves of revolution that are no circles
  /// are in no body here.
  static void expectSame(const OdModelerBody& plain, const OdModelerBody& splines) {
    ASSERT_EQ(plain.numFaces(), splines.numFaces());
    for (OdUInt32 i = 1; i <= plain.numFaces(); ++i) {
      const OdModelerFace& a = plain.face(i);
      const OdModelerFace& b = splines.face(i);
      EXPECT_EQ(a.kind, b.kind) << "face " << i;
      EXPECT_EQ(splines.surfaceKind(i), b.kind);
      EXPECT_EQ(a.inward, b.inward) << "face " << i;
      EXPECT_NEAR(a.radius, b.radius, 1e-6);
      EXPECT_NEAR(a.minorRadius, b.minorRadius, 1e-6);
      EXPECT_NEAR(a.halfAngle, b.halfAngle, 1e-7);
      EXPECT_LT(a.axis.crossProduct(b.axis).length(), 1e-7) << "face " << i;
      const OdGeVector3d apart = b.origin - a.origin;
      const double off = a.kind == OdModelerSurfaceKind::kCylinder
                             ? a.axis.crossProduct(apart).length()
                             : apart.length();
      EXPECT_TRUE(off < 1e-6 || a.kind == OdModelerSurfaceKind::kPlane) << "face " << i;
    }
    for (OdUInt32 i = 1; i <= plain.numEdges(); ++i) {
      if (plain.edge(i).degenerate) continue;
      EXPECT_EQ(plain.edge(i).kind, splines.edge(i).kind) << "edge " << i;
      EXPECT_EQ(splines.curveKind(i), splines.edge(i).kind) << "edge " << i;
      EXPECT_NEAR(plain.edge(i).radius, splines.edge(i).radius, 1e-6);
    }
  }
};

TEST_F(OdRecognisedSurface, QuadricsAndToriWrittenAsSplines) {
  const OdModelerBodyPtr plate =
      combine(OdModelerBooleanKind::kSubtract, box(60.0, 40.0, 10.0),
              {cylinder(4.0, 30.0, {20.0, 20.0, -5.0}), cylinder(0.05, 30.0, {50.0, 20.0, -5.0})});
  const OdGeMatrix3d aslant = OdGeMatrix3d::translation({700.0, -300.0, 50.0}) *
                              OdGeMatrix3d::rotation(0.7, OdGeVector3d(1.0, 2.0, 3.0).normal());
  for (const OdModelerBodyPtr& body : {plate, moved(plate, aslant)}) {
    expectSame(*body, *splined(odOcctShape(*body)));
  }
  for (const TopoDS_Shape& shape :
       {BRepPrimAPI_MakeCone(8.0, 3.0, 12.0).Shape(), BRepPrimAPI_MakeSphere(7.0).Shape(),
        BRepPrimAPI_MakeTorus(20.0, 5.0).Shape()}) {
    expectSame(*odBodyFromOcct(shape), *splined(shape));
  }
}

TEST_F(OdRecognisedSurface, WhatIsNearlyOneStaysFree) {
  // Stretched by 0.01 % across its axis, a cylinder of 4 is off by 4e-4 at most.
  const OdModelerBodyPtr bore = cylinder(4.0, 10.0);
  OdGeMatrix3d wide;
  wide(1, 1) = 1.0001;
  OdModelerBodyPtr elliptic;
  ASSERT_TRUE(bore->transformed(wide, elliptic).ok());
  int free = 0;
  for (OdUInt32 i = 1; i <= elliptic->numFaces(); ++i) {
    free += elliptic->surfaceKind(i) == OdModelerSurfaceKind::kOther;
  }
  EXPECT_EQ(free, 1) << "the wall; both ends are planes";
}

}  // namespace
