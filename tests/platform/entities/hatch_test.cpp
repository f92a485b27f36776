// Tests of hatches: areas, styles, lines.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "platform/base/error.h"
#include "platform/entities/hatch.h"
#include "tests/platform/entities/entity_samples.h"
#include "tests/support/drawing_testing.h"
#include "tests/support/test_seed.h"

namespace {

OdArray<OdGePoint2d> loopOf(std::initializer_list<OdGePoint2d> points) {
  OdArray<OdGePoint2d> loop;
  for (const OdGePoint2d& point : points) loop.append(point);
  return loop;
}

OdArray<OdGePoint2d> square(double from, double to) {
  return loopOf({{from, from}, {to, from}, {to, to}, {from, to}});
}

/// By the winding of a ray, the plain way.
bool isInside(const std::vector<OdDbHatchOutline>& outlines, const OdGePoint2d& p) {
  bool inside = false;
  for (const OdDbHatchOutline& outline : outlines) {
    for (std::size_t i = 0; i < outline.size(); ++i) {
      const OdGePoint2d& a = outline[i];
      const OdGePoint2d& b = outline[(i + 1) % outline.size()];
      if ((a.y > p.y) == (b.y > p.y)) continue;
      if (p.x < a.x + (b.x - a.x) * (p.y - a.y) / (b.y - a.y)) inside = !inside;
    }
  }
  return inside;
}

bool isIn(const OdDbHatchTriangles& fill, const OdGePoint2d& p, int& count) {
  count = 0;
  for (const auto& triangle : fill.triangles) {
    int left = 0;
    for (int k = 0; k < 3; ++k) {
      const OdGePoint2d& a = fill.points[triangle[static_cast<std::size_t>(k)]];
      const OdGePoint2d& b = fill.points[triangle[static_cast<std::size_t>((k + 1) % 3)]];
      left += (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) > 0.0 ? 1 : 0;
    }
    if (left == 3 || left == 0) ++count;
  }
  return count > 0;
}

class HatchTest : public DrawingVerbs, public testing::Test {};

TEST_F(HatchTest, StylesChooseAmongNestedLoops) {
  const OdDbHatchPtr hatch = OdDbHatch::createObject();
  for (const double inset : {0.0, 1.0, 2.0, 3.0}) hatch->appendLoop(square(inset, 10 - inset));
  const double rings = (100 - 64) + (36 - 16);
  EXPECT_NEAR(hatch->area(), rings, 1e-9);
  hatch->setHatchStyle(OdDb::kHatchOuter);
  EXPECT_NEAR(hatch->area(), 36.0, 1e-9);
  hatch->setHatchStyle(OdDb::kHatchIgnore);
  EXPECT_NEAR(hatch->area(), 100.0, 1e-9);
  hatch->removeLoopAt(0);
  EXPECT_NEAR(hatch->area(), 64.0, 1e-9);
  EXPECT_THROW(hatch->appendLoop(loopOf({{0, 0}})), OdError);
}

TEST_F(HatchTest, ArcsBoundTheArea) {
  const OdDbHatchPtr hatch = OdDbHatch::createObject();
  OdArray<double> bulges;
  bulges.resize(2, 1.0);
  hatch->appendLoop(loopOf({{-3, 0}, {3, 0}}), bulges);
  EXPECT_NEAR(hatch->area(), 9 * std::numbers::pi, 1e-3);
}

// Random outlines that cross themselves and each other, on a coarse grid so that corners, level
// edges and edges on edges come about; a sample is covered once inside and never outside.
TEST_F(HatchTest, FillsAndLinesAgreeWithAPlainTest) {
  const std::uint32_t seed = freshSeed();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto coordinate = [&] { return static_cast<double>(random() % 9); };
  for (int round = 0; round < 200; ++round) {
    std::vector<OdDbHatchOutline> outlines(1 + random() % 3);
    for (OdDbHatchOutline& outline : outlines) {
      outline.resize(3 + random() % 6);
      for (OdGePoint2d& point : outline) point = {coordinate(), coordinate()};
    }
    const OdDbHatchTriangles fill = oddbHatchFill(outlines);
    for (int sample = 0; sample < 50; ++sample) {
      const OdGePoint2d p(coordinate() + 0.137 + 0.01 * sample, coordinate() + 0.291);
      int count = 0;
      ASSERT_EQ(isIn(fill, p, count), isInside(outlines, p)) << p.x << " " << p.y;
      ASSERT_LE(count, 1);
    }
    std::vector<OdDbHatchSegment> segments;
    const OdDbHatchLines lines{0.7, {0.123, 0.4}, {-0.5, 0.9}, {}};
    ASSERT_TRUE(oddbHatchLines(outlines, lines, 10000, segments));
    for (const OdDbHatchSegment& segment : segments) {
      const OdGePoint2d middle((segment.from.x + segment.to.x) / 2,
                               (segment.from.y + segment.to.y) / 2);
      if (segment.from.distanceTo(segment.to) < 1e-6) continue;
      ASSERT_TRUE(isInside(outlines, middle)) << middle.x << " " << middle.y;
    }
  }
}

TEST_F(HatchTest, LinesCoverTheAreaAtTheirDistanceWithTheirDashes) {
  const std::vector<OdDbHatchOutline> outlines{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}};
  std::vector<OdDbHatchSegment> segments;
  ASSERT_TRUE(oddbHatchLines(outlines, {0.0, {0, 0.5}, {0, 1.0}, {}}, 1000, segments));
  EXPECT_EQ(segments.size(), 10u);
  segments.clear();
  // Dashes of 2 and gaps of 3 begin at the base: 0 to 2, 5 to 7.
  ASSERT_TRUE(oddbHatchLines(outlines, {0.0, {0, 5}, {0, 100.0}, {2, -3}}, 1000, segments));
  double sum = 0.0;
  for (const auto& [from, to] : segments) sum += from.distanceTo(to);
  EXPECT_NEAR(sum, 4.0, 1e-9);
  EXPECT_FALSE(oddbHatchLines(outlines, {0.0, {}, {0, 1e-9}, {}}, 1000, segments));

  // A pattern too dense to draw shows the outline instead.
  const OdDbHatchPtr hatch = OdDbHatch::createObject();
  hatch->appendLoop(square(0, 10));
  hatch->setLinePattern(0.3, 1e-7);
  EXPECT_EQ(drawnPoints(*hatch).size(), 5u);
  EXPECT_THROW(hatch->setPattern(L"X", {{0.0, {}, {1, 0}, {}}}), OdError) << "a step along";
}

}  // namespace
