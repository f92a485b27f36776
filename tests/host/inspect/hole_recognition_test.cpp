// Holes of bodies that were built with them: what is found is what was cut.
#include "host/inspect/hole_recognition.h"

#include <numbers>

#include "host/inspect/hole_patterns.h"
#include "tests/support/modeler_testing.h"

namespace vdm_host {
namespace {

constexpr auto kSubtract = OdModelerBooleanKind::kSubtract;
constexpr auto kUnite = OdModelerBooleanKind::kUnite;

class VdmHoleRecognition : public ModelerTest {
 protected:
  static OdModelerBodyPtr plate() { return box(200, 100, 20); }
  static OdModelerBodyPtr cone(double bottom, double top, double height, OdGeVector3d at) {
    return moved(made([&](auto& r) { return odModeler().cone(bottom, top, height, r); }),
                 OdGeMatrix3d::translation(at));
  }
  /// A tool with rounded ends along x: the middle part is narrower by nothing.
  static OdModelerBodyPtr slotTool(double length, double width, double height, OdGeVector3d at) {
    const double r = 0.5 * width;
    const double half = 0.5 * length - r;
    return combine(kUnite, box(2 * half, width, height, at + OdGeVector3d(-half, -r, 0)),
                   {cylinder(r, height, at + OdGeVector3d(-half, 0, 0)),
                    cylinder(r, height, at + OdGeVector3d(half, 0, 0))});
  }
  static std::vector<HoleFacts> holesOf(const OdModelerBodyPtr& body) {
    BodyFacts facts(body);
    return recognizeHoles(facts);
  }
};

TEST_F(VdmHoleRecognition, EachKindWithItsSizesInAnyPlace) {
  const OdModelerBodyPtr body =
      combine(kSubtract, plate(),
              {cylinder(4, 30, {20, 20, -5}),                                 // through
               cylinder(3, 15, {50, 20, 8}), cone(0, 3, 2, {50, 20, 6}),      // blind with a point
               cylinder(4, 30, {80, 20, -5}), cylinder(8, 10, {80, 20, 15}),  // counterbore
               cylinder(4, 30, {110, 20, -5}), cone(4, 9, 5, {110, 20, 15}),  // countersink
               cylinder(2, 30, {140, 20, -5}), cylinder(5, 14, {140, 20, 6}),
               cylinder(9, 9, {140, 20, 11}), slotTool(30, 10, 30, {40, 70, -5}),
               slotTool(30, 8, 30, {90, 70, 12}), box(40, 20, 30, {130, 60, 14})});
  const OdGeMatrix3d tilt = OdGeMatrix3d::translation({500, -300, 80}) *
                            OdGeMatrix3d::rotation(1.1, OdGeVector3d(1, 2, -0.5).normal());
  struct Row {
    HoleKind kind;
    bool through;
    double diameter, depth, outer, length;
    OdGePoint3d mouth;
  };
  const Row rows[] = {{HoleKind::kPlain, true, 8, 20, 0, 0, {20, 20, 20}},
                      {HoleKind::kPlain, false, 6, 12, 0, 0, {50, 20, 20}},
                      {HoleKind::kCounterbore, true, 8, 20, 16, 0, {80, 20, 20}},
                      {HoleKind::kCountersink, true, 8, 20, 18, 0, {110, 20, 20}},
                      {HoleKind::kStepped, true, 4, 20, 0, 0, {140, 20, 20}},
                      {HoleKind::kSlot, true, 10, 20, 0, 30, {40, 70, 20}},
                      {HoleKind::kSlot, false, 8, 8, 0, 30, {90, 70, 20}},
                      {HoleKind::kPocket, false, 0, 6, 0, 40, {150, 70, 20}}};
  for (const OdGeMatrix3d& place : {OdGeMatrix3d(), tilt}) {
    const std::vector<HoleFacts> found = holesOf(moved(body, place));
    EXPECT_EQ(found.size(), std::size(rows));
    for (const Row& row : rows) {
      SCOPED_TRACE(row.mouth.x);
      const OdGePoint3d mouth = place * row.mouth;
      const OdGePoint3d bottom = place * (row.mouth + OdGeVector3d(0, 0, -20));
      const auto hole = std::ranges::find_if(found, [&](const HoleFacts& h) {
        return h.mouth.distanceTo(mouth) < 1e-4 ||
               (row.through && h.mouth.distanceTo(bottom) < 1e-4);
      });
      ASSERT_NE(hole, found.end());
      EXPECT_EQ(hole->kind, row.kind);
      EXPECT_EQ(hole->through, row.through);
      EXPECT_NEAR(hole->diameter, row.diameter, 1e-6);
      EXPECT_NEAR(hole->depth, row.depth, 1e-6);
      EXPECT_NEAR(hole->outerDiameter, row.outer, 1e-6);
      EXPECT_NEAR(hole->length, row.length, 1e-6);
      EXPECT_NEAR(std::abs(hole->axis.dotProduct((bottom - mouth).normal())), 1.0, 1e-9);
    }
  }
  const std::vector<HoleFacts> found = holesOf(body);
  const auto& blind =
      *std::ranges::find_if(found, [](const HoleFacts& h) { return h.diameter == 6.0; });
  EXPECT_NEAR(blind.coneAngle, 2 * std::atan(1.5), 1e-6);
  EXPECT_NEAR(blind.axis.z, -1.0, 1e-9);
}

TEST_F(VdmHoleRecognition, AHoleThatAnotherOneCrossesStillCounts) {
  const OdGeMatrix3d along = OdGeMatrix3d::rotation(std::numbers::pi / 2, OdGeVector3d::kYAxis);
  const OdModelerBodyPtr body =
      combine(kSubtract, box(100, 60, 40),
              {cylinder(6, 60, {50, 30, -5}),
               moved(cylinder(3, 120), OdGeMatrix3d::translation({-5, 30, 20}) * along)});
  const std::vector<HoleFacts> found = holesOf(body);
  EXPECT_EQ(std::ranges::count_if(
                found, [](const HoleFacts& h) { return h.diameter == 12.0 && h.through; }),
            1);
  // The thin one is cut into two by the wide one; each part ends in its wall.
  EXPECT_EQ(std::ranges::count_if(found, [](const HoleFacts& h) { return h.diameter == 6.0; }), 2);
}

TEST_F(VdmHoleRecognition, WhatOnlyLooksLikeAHoleIsNone) {
  // A groove around a boss, fillets in the corners of a pocket, a closed cavity, a notch in a side.
  const OdModelerBodyPtr ring = combine(kSubtract, cylinder(15, 8), {cylinder(6, 8)});
  const OdModelerBodyPtr grooved =
      combine(kSubtract, plate(), {moved(ring, OdGeMatrix3d::translation({50, 50, 14}))});
  EXPECT_TRUE(holesOf(grooved).empty());
  EXPECT_TRUE(holesOf(combine(kSubtract, plate(), {cylinder(5, 8, {50, 50, 6})})).empty())
      << "cavity";
  EXPECT_TRUE(holesOf(combine(kSubtract, plate(), {cylinder(10, 30, {50, 0, -5})})).empty())
      << "notch";
  const OdModelerBodyPtr washer = combine(kSubtract, cylinder(20, 3), {cylinder(8, 3)});
  ASSERT_EQ(holesOf(washer).size(), 1U);
  EXPECT_EQ(holesOf(washer).front().kind, HoleKind::kPlain);
}

TEST_F(VdmHoleRecognition, PatternsAreFoundAndOthersAreNot) {
  const auto textOf = [](const std::vector<OdGePoint3d>& places) {
    std::vector<OdModelerBodyPtr> tools;
    for (const OdGePoint3d& p : places) tools.push_back(cylinder(3, 30, {p.x, p.y, -5}));
    BodyFacts facts(combine(kSubtract, plate(), tools));
    const std::vector<HoleFacts> holes = recognizeHoles(facts);
    EXPECT_EQ(holes.size(), places.size());
    std::string text;
    for (const HolePattern& pattern : recognizePatterns(holes, 1e-4))
      text += holePatternText(pattern) + ";";
    return text;
  };
  std::vector<OdGePoint3d> circle;
  for (int i = 0; i < 6; ++i) {
    const double angle = 0.3 + i * std::numbers::pi / 3.0;
    circle.push_back({100 + 25 * std::cos(angle), 50 + 25 * std::sin(angle), 0});
  }
  EXPECT_EQ(textOf(circle), "6 on a circle of 50;");
  EXPECT_EQ(textOf({{20, 20, 0}, {40, 30, 0}, {60, 40, 0}, {80, 50, 0}}),
            "row of 4, pitch 22.3607;");
  EXPECT_EQ(textOf({{20, 20, 0}, {40, 20, 0}, {60, 20, 0}, {20, 50, 0}, {40, 50, 0}, {60, 50, 0}}),
            "grid of 3 x 2, pitch 20 x 30;");
  EXPECT_EQ(textOf({{20, 20, 0}, {41, 20, 0}, {60, 25, 0}, {150, 70, 0}}), "");
}

}  // namespace
}  // namespace vdm_host
