// Elementary and swept solids: sizes, kinds, refusals.
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "tests/support/modeler_testing.h"

namespace {

constexpr double kPi = std::numbers::pi;

using Kind = OdModelerBooleanKind;
using Make = std::function<OdStatus(OdModelerBodyPtr&)>;

class OdModelerPrimitives : public ModelerTest {
 protected:
  struct Row {
    Make make;
    double volume;
    double area;
    OdUInt32 faces;
  };
  static OdModelerProfile square(double size) {
    OdModelerProfile profile;
    profile.outer = {{{0.0, 0.0}}, {{size, 0.0}}, {{size, size}}, {{0.0, size}}};
    return profile;
  }
  static OdModelerLoop circle(double radius, double sense = 1.0) {
    return {{{-radius, 0.0}, sense}, {{radius, 0.0}, sense}};
  }
};

TEST_F(OdModelerPrimitives, HaveTheVolumeAreaAndFacesOfTheirFormulas) {
  OdModeler& m = odModeler();
  OdModelerProfile ring = square(10.0);
  ring.outer = circle(5.0);
  ring.holes = {circle(3.0, -1.0)};
  OdModelerProfile offAxis = square(2.0);
  for (OdModelerProfileVertex& v : offAxis.outer) v.point.x += 4.0;
  const OdGeVector3d up(1.0, 1.0, 2.0);
  const OdGeVector3d down(0.0, 0.0, -2.0);
  const OdGeVector3d& y = OdGeVector3d::kYAxis;
  const Row rows[] = {
      {[&](auto& r) { return m.box(2.0, 3.0, 4.0, r); }, 24.0, 52.0, 6},
      {[&](auto& r) { return m.cylinder(2.0, 5.0, r); }, 20.0 * kPi, 28.0 * kPi, 3},
      {[&](auto& r) { return m.cone(4.0, 0.0, 3.0, r); }, 16.0 * kPi, 36.0 * kPi, 2},
      {[&](auto& r) { return m.cone(5.0, 1.0, 3.0, r); }, 31.0 * kPi, 56.0 * kPi, 3},
      {[&](auto& r) { return m.cone(2.0, 2.0, 5.0, r); }, 20.0 * kPi, 28.0 * kPi, 3},
      {[&](auto& r) { return m.sphere(3.0, r); }, 36.0 * kPi, 36.0 * kPi, 1},
      {[&](auto& r) { return m.torus(5.0, 2.0, r); }, 40.0 * kPi * kPi, 40.0 * kPi * kPi, 1},
      {[&](auto& r) { return m.wedge(4.0, 2.0, 3.0, 0.0, r); }, 12.0, 36.0, 5},
      {[&](auto& r) { return m.wedge(8.0, 2.0, 3.0, 4.0, r); }, 36.0, 76.0, 6},
      {[&](auto& r) { return m.extrude(square(3.0), up, r); }, 18.0, 18.0 + 12.0 * std::sqrt(5.0),
       6},
      {[&](auto& r) { return m.extrude(ring, down, r); }, 32.0 * kPi, 64.0 * kPi, 6},
      {[&](auto& r) { return m.revolve(offAxis, {}, y, 2.0 * kPi, r); }, 40.0 * kPi, 80.0 * kPi, 4},
      {[&](auto& r) { return m.revolve(offAxis, {}, y, kPi / 2.0, r); }, 10.0 * kPi,
       20.0 * kPi + 8.0, 6},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    OdModelerBodyPtr body;
    ASSERT_TRUE(succeeded(row.make(body)));
    const OdModelerMassProperties mass = body->massProperties();
    EXPECT_NEAR(mass.volume, row.volume, row.volume * 1e-6);
    EXPECT_NEAR(mass.area, row.area, row.area * 1e-6);
    EXPECT_EQ(body->numFaces(), row.faces);
    EXPECT_EQ(body->kind(), OdModelerBodyKind::kSolid);
    EXPECT_TRUE(succeeded(body->check()));
  }
}

TEST_F(OdModelerPrimitives, RefusedOperationsNameTheReasonAndLeaveResultAndHistoryAlone) {
  OdModeler& m = odModeler();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const OdGePoint3d center(0.5, 0.0, 0.0);
  OdModelerProfile line = square(1.0);
  line.outer.resize(2);
  OdModelerProfile crossed = square(1.0);
  std::swap(crossed.outer[1], crossed.outer[2]);
  OdModelerProfile doubled = square(1.0);
  doubled.outer[1] = doubled.outer[0];
  const OdModelerBodyPtr cube = box(1.0, 1.0, 1.0);
  const OdModelerBodyPtr far = box(1.0, 1.0, 1.0, {50.0, 0.0, 0.0});
  const OdModelerBodyPtr pin = cylinder(3.0, 9.0);
  OdUInt32 seam = 0;
  for (OdUInt32 i = 1; i <= pin->numEdges(); ++i) seam = pin->edge(i).seam ? i : seam;
  const OdGeMatrix3d flat = OdGeMatrix3d::scaling(OdGeScale3d(1.0, 0.0, 1.0));
  OdGeMatrix3d broken;
  broken(0, 3) = inf;
  OdModelerHistory history;
  history.inputs.resize(7);
  using Bodies = std::vector<OdModelerBodyPtr>;
  using Edges = std::vector<OdUInt32>;
  const auto boolean = [&](Kind kind, const OdModelerBodyPtr& base, const Bodies& tools) {
    return [&, kind, base, tools](auto& r) { return m.boolean(kind, base, tools, r, &history); };
  };
  const auto fillet = [&](const OdModelerBodyPtr& body, const Edges& edges, double size) {
    return [&, body, edges, size](auto& r) {
      OdModelerBodyPtr other = r;
      EXPECT_FALSE(m.chamfer(body, edges, size, other, &history).ok());
      EXPECT_EQ(other, r);
      return m.fillet(body, edges, size, r, &history);
    };
  };
  const std::pair<Make, OdResult> rows[] = {
      {[&](auto& r) { return m.box(1.0, -1.0, 1.0, r); }, eInvalidInput},
      {[&](auto& r) { return m.box(1.0, 1.0, nan, r); }, eInvalidInput},
      {[&](auto& r) { return m.box(1.0, 1.0, 1.1e8, r); }, eInvalidInput},
      {[&](auto& r) {
         return far->transformed(OdGeMatrix3d::translation({1e8, 0, 0}), r);
       },
       eInvalidInput},
      {[&](auto& r) { return m.cylinder(inf, 1.0, r); }, eInvalidInput},
      {[&](auto& r) { return m.cone(0.0, 0.0, 1.0, r); }, eInvalidInput},
      {[&](auto& r) { return m.sphere(1e-12, r); }, eInvalidInput},
      {[&](auto& r) { return m.torus(2.0, 2.0, r); }, eInvalidInput},
      {[&](auto& r) { return m.wedge(2.0, 1.0, 1.0, 3.0, r); }, eInvalidInput},
      {[&](auto& r) { return m.extrude(line, OdGeVector3d::kZAxis, r); }, eInvalidInput},
      {[&](auto& r) { return m.extrude(crossed, OdGeVector3d::kZAxis, r); }, eInvalidInput},
      {[&](auto& r) { return m.extrude(doubled, OdGeVector3d::kZAxis, r); }, eInvalidInput},
      {[&](auto& r) { return m.extrude(square(1.0), OdGeVector3d::kXAxis, r); }, eInvalidInput},
      {[&](auto& r) { return m.revolve(square(1.0), {}, OdGeVector3d::kYAxis, 0.0, r); },
       eInvalidInput},
      {[&](auto& r) { return m.revolve(square(1.0), {}, OdGeVector3d::kZAxis, 1.0, r); },
       eInvalidInput},
      {[&](auto& r) { return m.revolve(square(1.0), center, OdGeVector3d::kYAxis, 1.0, r); },
       eInvalidInput},
      {boolean(Kind::kSubtract, cube, {cube}), eDegenerateGeometry},
      {boolean(Kind::kIntersect, cube, {far}), eDegenerateGeometry},
      {boolean(Kind::kUnite, cube, {}), eInvalidInput},
      {boolean(Kind::kUnite, cube, {nullptr}), eInvalidInput},
      {boolean(Kind::kUnite, nullptr, {cube}), eInvalidInput},
      {fillet(cube, {1}, 0.0), eInvalidInput},
      {fillet(cube, {13}, 0.1), eInvalidInput},
      {fillet(cube, {0}, 0.1), eInvalidInput},
      {fillet(cube, {}, 0.1), eInvalidInput},
      {fillet(nullptr, {1}, 0.1), eInvalidInput},
      {fillet(pin, {seam}, 1.0), eInvalidInput},
      {fillet(cube, {1}, 50.0), eModelerError},
      {[&](auto& r) { return cube->transformed(flat, r); }, eInvalidInput},
      {[&](auto& r) { return cube->transformed(broken, r); }, eInvalidInput},
  };
  for (const auto& [make, code] : rows) {
    OdModelerBodyPtr result = far;
    const OdStatus status = make(result);
    EXPECT_EQ(status.code, code) << status.text.utf8();
    EXPECT_FALSE(status.text.isEmpty());
    EXPECT_EQ(result, far);
  }
  EXPECT_EQ(history.inputs.size(), 7u);
}

}  // namespace
