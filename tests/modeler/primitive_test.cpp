// Elementary and swept solids: sizes, kinds, refusals.
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "platform/base/error.h"
#include "tests/modeler/modeler_fixture.h"

namespace {

constexpr double kPi = std::numbers::pi;

using Make = std::function<OdModelerStatus(OdModelerBodyPtr&)>;

class OdModelerPrimitives : public ModelerTest {
 protected:
  struct Row {
    const char* name;
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
  static OdModelerLoop circle(double x, double y, double radius, double sense = 1.0) {
    return {{{x - radius, y}, sense}, {{x + radius, y}, sense}};
  }
};

TEST_F(OdModelerPrimitives, HaveTheVolumeAreaAndFacesOfTheirFormulas) {
  OdModeler& m = odModeler();
  const double coneSlant = std::hypot(2.0, 6.0);
  OdModelerProfile ring = square(10.0);
  ring.outer = circle(0.0, 0.0, 5.0);
  ring.holes = {circle(0.0, 0.0, 3.0, -1.0)};
  OdModelerProfile offAxis = square(2.0);
  for (OdModelerProfileVertex& v : offAxis.outer) v.point.x += 4.0;
  const Row rows[] = {
      {"box", [&](auto& r) { return m.box(2.0, 3.0, 4.0, r); }, 24.0, 52.0, 6},
      {"cylinder", [&](auto& r) { return m.cylinder(2.0, 5.0, r); }, 20.0 * kPi, 28.0 * kPi, 3},
      {"cone", [&](auto& r) { return m.cone(2.0, 0.0, 6.0, r); }, 8.0 * kPi,
       kPi * (4.0 + 2.0 * coneSlant), 2},
      {"cut cone", [&](auto& r) { return m.cone(3.0, 1.0, 6.0, r); }, 26.0 * kPi,
       kPi * (10.0 + 4.0 * coneSlant), 3},
      {"straight cone", [&](auto& r) { return m.cone(2.0, 2.0, 5.0, r); }, 20.0 * kPi, 28.0 * kPi,
       3},
      {"sphere", [&](auto& r) { return m.sphere(3.0, r); }, 36.0 * kPi, 36.0 * kPi, 1},
      {"torus", [&](auto& r) { return m.torus(5.0, 2.0, r); }, 40.0 * kPi * kPi, 40.0 * kPi * kPi,
       1},
      {"ridge", [&](auto& r) { return m.wedge(4.0, 2.0, 3.0, 0.0, r); }, 12.0,
       8.0 + 12.0 + 6.0 + 10.0, 5},
      {"wedge", [&](auto& r) { return m.wedge(4.0, 2.0, 3.0, 2.0, r); }, 18.0,
       8.0 + 4.0 + 18.0 + 6.0 + 2.0 * std::hypot(2.0, 3.0), 6},
      {"extruded square",
       [&](auto& r) {
         return m.extrude(square(3.0), {1.0, 1.0, 2.0}, r);
       },
       18.0, 18.0 + 2.0 * (3.0 * std::sqrt(5.0) + 3.0 * std::sqrt(5.0)), 6},
      {"tube",
       [&](auto& r) {
         return m.extrude(ring, {0.0, 0.0, -2.0}, r);
       },
       32.0 * kPi, 32.0 * kPi + 32.0 * kPi, 6},
      {"turned ring",
       [&](auto& r) { return m.revolve(offAxis, {}, OdGeVector3d::kYAxis, 2.0 * kPi, r); },
       40.0 * kPi, 2.0 * 20.0 * kPi + 40.0 * kPi, 4},
      {"turned sector",
       [&](auto& r) { return m.revolve(offAxis, {}, OdGeVector3d::kYAxis, kPi / 2.0, r); },
       10.0 * kPi, 20.0 * kPi + 8.0, 6},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    OdModelerBodyPtr body;
    ASSERT_TRUE(succeeded(row.make(body)));
    const OdModelerMassProperties mass = body->massProperties();
    EXPECT_NEAR(mass.volume, row.volume, row.volume * 1e-6);
    EXPECT_NEAR(mass.area, row.area, row.area * 1e-6);
    EXPECT_EQ(body->numFaces(), row.faces);
    EXPECT_EQ(body->numSolids(), 1u);
    EXPECT_EQ(body->kind(), OdModelerBodyKind::kSolid);
    EXPECT_TRUE(succeeded(body->check()));
  }
}

TEST_F(OdModelerPrimitives, StandAtTheOriginAlongZ) {
  OdModelerBodyPtr body;
  ASSERT_TRUE(succeeded(odModeler().wedge(4.0, 2.0, 3.0, 1.0, body)));
  EXPECT_TRUE(body->extents().isEqualTo({{0.0, 0.0, 0.0}, {4.0, 2.0, 3.0}}, OdGeTol(1e-6)));
  ASSERT_TRUE(succeeded(odModeler().cone(2.0, 1.0, 3.0, body)));
  EXPECT_TRUE(body->extents().isEqualTo({{-2.0, -2.0, 0.0}, {2.0, 2.0, 3.0}}, OdGeTol(1e-6)));
}

TEST_F(OdModelerPrimitives, RefuseSizesThatMakeNoBodyAndLeaveTheResultAlone) {
  OdModeler& m = odModeler();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  OdModelerProfile line = square(1.0);
  line.outer.resize(2);
  OdModelerProfile crossed = square(1.0);
  std::swap(crossed.outer[1], crossed.outer[2]);
  OdModelerProfile doubled = square(1.0);
  doubled.outer[1] = doubled.outer[0];
  const Make rows[] = {
      [&](auto& r) { return m.box(0.0, 1.0, 1.0, r); },
      [&](auto& r) { return m.box(1.0, -1.0, 1.0, r); },
      [&](auto& r) { return m.box(1.0, 1.0, nan, r); },
      [&](auto& r) { return m.cylinder(inf, 1.0, r); },
      [&](auto& r) { return m.cone(-1.0, 2.0, 1.0, r); },
      [&](auto& r) { return m.cone(0.0, 0.0, 1.0, r); },
      [&](auto& r) { return m.sphere(1e-12, r); },
      [&](auto& r) { return m.torus(2.0, 2.0, r); },
      [&](auto& r) { return m.wedge(2.0, 1.0, 1.0, 3.0, r); },
      [&](auto& r) { return m.extrude(line, OdGeVector3d::kZAxis, r); },
      [&](auto& r) { return m.extrude(crossed, OdGeVector3d::kZAxis, r); },
      [&](auto& r) { return m.extrude(doubled, OdGeVector3d::kZAxis, r); },
      [&](auto& r) { return m.extrude(square(1.0), OdGeVector3d::kXAxis, r); },
      [&](auto& r) { return m.revolve(square(1.0), {}, OdGeVector3d::kYAxis, 0.0, r); },
      [&](auto& r) { return m.revolve(square(1.0), {}, OdGeVector3d::kZAxis, 1.0, r); },
      [&](auto& r) {
        return m.revolve(square(1.0), {0.5, 0.0, 0.0}, OdGeVector3d::kYAxis, 1.0, r);
      },
  };
  const OdModelerBodyPtr before = box(1.0, 1.0, 1.0);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    SCOPED_TRACE(i);
    OdModelerBodyPtr result = before;
    const OdModelerStatus status = rows[i](result);
    EXPECT_EQ(status.code, eInvalidInput) << status.text.utf8();
    EXPECT_FALSE(status.text.isEmpty());
    EXPECT_EQ(result, before);
  }
}

TEST_F(OdModelerPrimitives, WithoutAModellerTheRegistryRaises) {
  odSetModeler(nullptr);
  EXPECT_FALSE(odHasModeler());
  EXPECT_THROW(odModeler(), OdError);
}

}  // namespace
