// Fillets and chamfers: sizes, history, refusals.
#include <numbers>

#include "tests/modeler/modeler_fixture.h"

namespace {

constexpr double kPi = std::numbers::pi;

class OdModelerBlend : public ModelerTest {};

TEST_F(OdModelerBlend, FilletRoundsTheEdgeAndTellsWhichFaceCameOfIt) {
  const OdModelerBodyPtr cube = box(10.0, 10.0, 10.0);
  OdModelerBodyPtr result;
  OdModelerHistory history;
  const OdUInt32 edges[] = {1};
  ASSERT_TRUE(succeeded(odModeler().fillet(cube, edges, 2.0, result, &history)));
  EXPECT_NEAR(result->massProperties().volume, 1000.0 - 10.0 * (4.0 - kPi), 1e-6);
  EXPECT_EQ(result->numFaces(), 7u);
  const OdModelerFate& fate = history.inputs.at(0).edges[0];
  EXPECT_TRUE(fate.deleted());
  ASSERT_FALSE(fate.generated.empty());
  EXPECT_EQ(fate.generated.front().type, OdModelerSubentType::kFace);
  EXPECT_EQ(fate.generated.front().index, faceOfKind(*result, OdModelerSurfaceKind::kCylinder));
  unsigned changed = 0;
  for (const OdModelerFate& face : history.inputs[0].faces) {
    EXPECT_EQ(face.images.size(), 1u);
    if (face.changed) ++changed;
  }
  EXPECT_EQ(changed, 4u) << "two beside the edge, two at its ends";
}

TEST_F(OdModelerBlend, ChamferCutsAllEdgesBack) {
  const OdModelerBodyPtr plate = plateWithHole();
  OdModelerBodyPtr result;
  std::vector<OdUInt32> circles;
  for (OdUInt32 i = 1; i <= plate->numEdges(); ++i) {
    if (plate->edge(i).kind == OdModelerCurveKind::kCircle) circles.push_back(i);
  }
  OdModelerHistory history;
  ASSERT_TRUE(succeeded(odModeler().chamfer(plate, circles, 1.0, result, &history)));
  // A ring of triangular section: its area 1/2 turned at the radius of its centroid (Pappus).
  const double ring = 0.5 * 2.0 * kPi * (8.0 + 1.0 / 3.0);
  EXPECT_NEAR(plate->massProperties().volume - result->massProperties().volume, 2.0 * ring, 1e-6);
  EXPECT_EQ(result->numFaces(), 9u);
  for (const OdUInt32 edge : circles)
    EXPECT_FALSE(history.inputs[0].edges[edge - 1].generated.empty());
}

TEST_F(OdModelerBlend, WhatDoesNotFitIsRefusedAndLeavesTheResultAlone) {
  const OdModelerBodyPtr cube = box(10.0, 10.0, 10.0);
  const OdModelerBodyPtr pin = cylinder(3.0, 9.0);
  OdUInt32 seam = 0;
  for (OdUInt32 i = 1; i <= pin->numEdges(); ++i) seam = pin->edge(i).seam ? i : seam;
  struct Row {
    OdModelerBodyPtr body;
    std::vector<OdUInt32> edges;
    double size;
    OdResult code;
  };
  const Row rows[] = {
      {cube, {1}, 0.0, eInvalidInput},    {cube, {13}, 1.0, eInvalidInput},
      {cube, {0}, 1.0, eInvalidInput},    {cube, {}, 1.0, eInvalidInput},
      {nullptr, {1}, 1.0, eInvalidInput}, {pin, {seam}, 1.0, eInvalidInput},
      {cube, {1}, 50.0, eModelerError},
  };
  for (const Row& row : rows) {
    OdModelerBodyPtr result = cube;
    const OdModelerStatus status =
        odModeler().fillet(row.body, row.edges, row.size, result, nullptr);
    EXPECT_EQ(status.code, row.code) << status.text.utf8();
    EXPECT_EQ(result, cube);
    EXPECT_FALSE(odModeler().chamfer(row.body, row.edges, row.size, result, nullptr).ok());
    EXPECT_EQ(result, cube);
  }
}

}  // namespace
