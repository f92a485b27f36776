// Bodies: faces, edges, box, mass, mesh, transformations.
#include <algorithm>
#include <cmath>
#include <utility>

#include "tests/support/modeler_testing.h"

namespace {

const OdGeTol kTol(1e-6);

class OdModelerBodyTest : public ModelerTest {
 protected:
  // The signed volume within a closed triangle mesh.
  static double volumeOf(const OdModelerMesh& mesh) {
    double sum = 0.0;
    for (const OdModelerFaceMesh& face : mesh.faces) {
      for (const auto& t : face.triangles) {
        sum += face.points[t[0]].asVector().dotProduct(
            face.points[t[1]].asVector().crossProduct(face.points[t[2]].asVector()));
      }
    }
    return sum / 6.0;
  }
};

TEST_F(OdModelerBodyTest, EveryNormalPointsAwayFromTheMaterial) {
  const OdModelerBodyPtr plate = plateWithHole();
  for (const OdModelerBodyPtr& body :
       {plate, moved(plate, OdGeMatrix3d::mirroring(OdGePlane::kYZPlane))}) {
    // The middle of the top is in the hole: the sample point must be beside it.
    const OdModelerFace& top = body->face(faceTowards(*body, OdGeVector3d::kZAxis));
    EXPECT_GT(top.pointOnFace.distanceTo(top.centroid), 8.0);
    EXPECT_TRUE(body->face(faceOfKind(*body, OdModelerSurfaceKind::kCylinder)).inward);
    for (OdUInt32 i = 1; i <= body->numFaces(); ++i) {
      const OdGePoint3d outside = body->face(i).pointOnFace + body->face(i).normal * 0.5;
      const std::vector<OdModelerBodyPtr> probe{box(0.1, 0.1, 0.1, outside.asVector())};
      OdModelerBodyPtr common;
      const OdStatus status =
          odModeler().boolean(OdModelerBooleanKind::kIntersect, body, probe, common, nullptr);
      EXPECT_EQ(status.code, eDegenerateGeometry) << "face " << i;
    }
  }
}

TEST_F(OdModelerBodyTest, EdgesAndVerticesAgreeAboutTheirNeighbours) {
  const OdModelerBodyPtr plate = plateWithHole();
  EXPECT_EQ(plate->numFaces(), 7u);
  EXPECT_EQ(plate->numEdges(), 15u);
  EXPECT_EQ(plate->numVertices(), 10u);
  for (OdUInt32 i = 1; i <= plate->numEdges(); ++i) {
    const OdModelerEdge& edge = plate->edge(i);
    EXPECT_EQ(edge.faces.size(), edge.seam ? 1u : 2u);
    for (const OdUInt32 face : edge.faces) {
      EXPECT_EQ(std::ranges::count(plate->face(face).edges, i), 1);
    }
    for (const OdUInt32 end : {edge.startVertex, edge.endVertex}) {
      EXPECT_EQ(std::ranges::count(plate->vertex(end).edges, i), 1);
    }
  }
  OdModelerBodyPtr sphere;
  ASSERT_TRUE(succeeded(odModeler().sphere(3.0, sphere)));
  EXPECT_EQ(sphere->face(1).edges.size(), sphere->numEdges() - 2) << "degenerate ones bound none";
}

TEST_F(OdModelerBodyTest, TransformationsScaleTheVolumeAndKeepTheOrder) {
  const OdModelerBodyPtr plate = plateWithHole();
  const double volume = plate->massProperties().volume;
  const OdGeMatrix3d rigid = OdGeMatrix3d::rotation(0.7, {1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
  const std::pair<OdGeMatrix3d, bool> rows[] = {
      {rigid * OdGeMatrix3d::scaling(2.5), true},
      {rigid * OdGeMatrix3d::mirroring(OdGePlane::kXYPlane), true},
      {rigid * OdGeMatrix3d::scaling(OdGeScale3d(-1.0, 2.0, 0.25)), false},
  };
  for (const auto& [matrix, keepsKinds] : rows) {
    const OdModelerBodyPtr body = moved(plate, matrix);
    EXPECT_NEAR(body->massProperties().volume, volume * std::abs(matrix.det()), volume * 1e-5);
    EXPECT_TRUE(succeeded(body->check()));
    ASSERT_EQ(body->numFaces(), plate->numFaces());
    ASSERT_EQ(body->numVertices(), plate->numVertices());
    for (OdUInt32 i = 1; i <= plate->numVertices(); ++i) {
      EXPECT_TRUE(body->vertex(i).point.isEqualTo(matrix * plate->vertex(i).point, kTol));
    }
    for (OdUInt32 i = 1; i <= plate->numFaces(); ++i) {
      EXPECT_EQ(body->face(i).edges, plate->face(i).edges);
      EXPECT_LT(body->face(i).centroid.distanceTo(matrix * plate->face(i).centroid), 1e-3);
      EXPECT_TRUE(!keepsKinds || body->face(i).kind == plate->face(i).kind);
    }
  }
}

TEST_F(OdModelerBodyTest, MeshIsClosedAndFollowsItsOptions) {
  const OdModelerBodyPtr plate = plateWithHole();
  const double volume = plate->massProperties().volume;
  const OdBinaryData before = bytesOf(plate);
  for (const OdModelerBodyPtr& body :
       {plate, moved(plate, OdGeMatrix3d::mirroring(OdGePlane::kYZPlane))}) {
    OdModelerMesh coarse;
    OdModelerMesh fine;
    ASSERT_TRUE(succeeded(body->tessellate({2.0, 1.0}, coarse)));
    ASSERT_TRUE(succeeded(body->tessellate({0.001, 0.05}, fine)));
    EXPECT_NEAR(volumeOf(fine), volume, volume * 1e-5);
    EXPECT_GT(std::abs(volumeOf(coarse) - volume), std::abs(volumeOf(fine) - volume));
    const OdUInt32 hole = faceOfKind(*body, OdModelerSurfaceKind::kCylinder);
    const OdModelerFaceMesh& wall = fine.faces.at(hole - 1);
    for (std::size_t i = 0; i < wall.points.size(); ++i) {
      EXPECT_LT(wall.normals[i].dotProduct(wall.points[i] - body->face(hole).origin), 0.0);
    }
  }
  EXPECT_EQ(bytesOf(plate), before) << "meshing must not change the body";
}

}  // namespace
