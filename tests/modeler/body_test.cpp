// What a body tells of itself: faces, edges, box, mass, mesh, transformations.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "platform/base/error.h"
#include "tests/modeler/modeler_fixture.h"

namespace {

constexpr double kPi = std::numbers::pi;
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

TEST_F(OdModelerBodyTest, FacesTellKindParametersAndSide) {
  const OdModelerBodyPtr plate = plateWithHole();
  const OdModelerFace& top = plate->face(faceTowards(*plate, OdGeVector3d::kZAxis));
  EXPECT_EQ(top.kind, OdModelerSurfaceKind::kPlane);
  EXPECT_NEAR(top.area, 6000.0 - 64.0 * kPi, 1e-6);
  EXPECT_TRUE(top.centroid.isEqualTo({50.0, 30.0, 10.0}, kTol));
  EXPECT_NEAR(top.origin.z, 10.0, 1e-9);
  // The middle of the top is in the hole: the sample point must be beside it.
  EXPECT_GT(top.pointOnFace.distanceTo({50.0, 30.0, 10.0}), 8.0);
  EXPECT_EQ(top.edges.size(), 5u);

  const OdModelerFace& hole = plate->face(faceOfKind(*plate, OdModelerSurfaceKind::kCylinder));
  EXPECT_TRUE(hole.inward);
  EXPECT_NEAR(hole.radius, 8.0, 1e-12);
  EXPECT_TRUE(hole.axis.isParallelTo(OdGeVector3d::kZAxis));
  EXPECT_NEAR(hole.origin.x, 50.0, 1e-9);
  EXPECT_NEAR(hole.area, 160.0 * kPi, 1e-6);
  const OdModelerBodyPtr pin = cylinder(8.0, 10.0);
  EXPECT_FALSE(pin->face(faceOfKind(*pin, OdModelerSurfaceKind::kCylinder)).inward);
}

TEST_F(OdModelerBodyTest, ConesSpheresAndToriTellTheirParameters) {
  OdModelerBodyPtr cone;
  OdModelerBodyPtr sphere;
  OdModelerBodyPtr torus;
  ASSERT_TRUE(succeeded(odModeler().cone(3.0, 1.0, 2.0, cone)));
  ASSERT_TRUE(succeeded(odModeler().sphere(3.0, sphere)));
  ASSERT_TRUE(succeeded(odModeler().torus(5.0, 2.0, torus)));
  const OdModelerFace& side = cone->face(faceOfKind(*cone, OdModelerSurfaceKind::kCone));
  EXPECT_TRUE(side.origin.isEqualTo({0.0, 0.0, 3.0}, kTol));
  EXPECT_NEAR(side.halfAngle, kPi / 4.0, 1e-12);
  EXPECT_FALSE(side.inward);
  EXPECT_NEAR(sphere->face(1).radius, 3.0, 1e-12);
  EXPECT_TRUE(sphere->face(1).origin.isEqualTo({}, kTol));
  EXPECT_EQ(torus->face(1).kind, OdModelerSurfaceKind::kTorus);
  EXPECT_NEAR(torus->face(1).minorRadius, 2.0, 1e-12);
  EXPECT_FALSE(torus->face(1).inward);
  EXPECT_FALSE(sphere->face(1).inward);

  const OdModelerBodyPtr hollow =
      combine(OdModelerBooleanKind::kSubtract, box(20.0, 20.0, 20.0, {-10.0, -10.0, -10.0}),
              {sphere, moved(torus, OdGeMatrix3d::translation({0.0, 0.0, 6.0}))});
  EXPECT_TRUE(hollow->face(faceOfKind(*hollow, OdModelerSurfaceKind::kSphere)).inward);
  EXPECT_TRUE(hollow->face(faceOfKind(*hollow, OdModelerSurfaceKind::kTorus)).inward);
}

TEST_F(OdModelerBodyTest, EveryNormalPointsAwayFromTheMaterial) {
  const OdModelerBodyPtr plate = plateWithHole();
  OdModelerBodyPtr mirrored = moved(plate, OdGeMatrix3d::mirroring(OdGePlane::kYZPlane));
  for (const OdModelerBodyPtr& body : {plate, mirrored}) {
    for (OdUInt32 i = 1; i <= body->numFaces(); ++i) {
      const OdModelerFace& face = body->face(i);
      const OdGePoint3d outside = face.pointOnFace + face.normal * 0.5;
      const OdModelerBodyPtr probe = box(0.1, 0.1, 0.1, outside.asVector());
      OdModelerBodyPtr common;
      EXPECT_EQ(odModeler()
                    .boolean(OdModelerBooleanKind::kIntersect, body, {{probe}}, common, nullptr)
                    .code,
                eDegenerateGeometry)
          << "face " << i;
    }
  }
}

TEST_F(OdModelerBodyTest, EdgesAndVerticesAgreeAboutTheirNeighbours) {
  const OdModelerBodyPtr plate = plateWithHole();
  EXPECT_EQ(plate->numFaces(), 7u);
  EXPECT_EQ(plate->numEdges(), 15u);
  EXPECT_EQ(plate->numVertices(), 10u);
  unsigned circles = 0;
  unsigned seams = 0;
  for (OdUInt32 i = 1; i <= plate->numEdges(); ++i) {
    const OdModelerEdge& edge = plate->edge(i);
    if (edge.seam) ++seams;
    EXPECT_EQ(edge.faces.size(), edge.seam ? 1u : 2u);
    for (const OdUInt32 face : edge.faces) {
      EXPECT_EQ(std::ranges::count(plate->face(face).edges, i), 1);
    }
    for (const OdUInt32 end : {edge.startVertex, edge.endVertex}) {
      ASSERT_GE(end, 1u);
      EXPECT_EQ(std::ranges::count(plate->vertex(end).edges, i), 1);
    }
    const OdGePoint3d start = plate->vertex(edge.startVertex).point;
    const OdGePoint3d end = plate->vertex(edge.endVertex).point;
    if (edge.kind == OdModelerCurveKind::kCircle) {
      ++circles;
      EXPECT_EQ(edge.startVertex, edge.endVertex);
      EXPECT_NEAR(edge.radius, 8.0, 1e-9);
      EXPECT_NEAR(edge.length, 16.0 * kPi, 1e-6);
      EXPECT_NEAR(edge.center.x, 50.0, 1e-9);
    } else {
      EXPECT_NEAR(edge.length, start.distanceTo(end), 1e-6);
      EXPECT_TRUE(edge.midPoint.isEqualTo(start + (end - start) * 0.5, kTol));
      EXPECT_TRUE(edge.direction.isEqualTo((end - start).normal(), kTol));
    }
  }
  EXPECT_EQ(circles, 2u);
  EXPECT_EQ(seams, 1u);
}

TEST_F(OdModelerBodyTest, DegenerateEdgesAreMarkedAndBoundNoFace) {
  OdModelerBodyPtr sphere;
  ASSERT_TRUE(succeeded(odModeler().sphere(3.0, sphere)));
  unsigned degenerate = 0;
  for (OdUInt32 i = 1; i <= sphere->numEdges(); ++i) degenerate += sphere->edge(i).degenerate;
  EXPECT_EQ(degenerate, 2u);
  EXPECT_EQ(sphere->face(1).edges.size(), sphere->numEdges() - degenerate);
}

TEST_F(OdModelerBodyTest, IndicesOutOfRangeRaise) {
  const OdModelerBodyPtr body = box(1.0, 1.0, 1.0);
  EXPECT_THROW(body->face(0), OdError_InvalidIndex);
  EXPECT_THROW(body->face(7), OdError_InvalidIndex);
  EXPECT_THROW(body->edge(13), OdError_InvalidIndex);
  EXPECT_THROW(body->vertex(9), OdError_InvalidIndex);
  EXPECT_TRUE(body->hasSubent({OdModelerSubentType::kFace, 6}));
  EXPECT_FALSE(body->hasSubent({OdModelerSubentType::kNull, 1}));
  OdModelerBodyPtr result;
  EXPECT_EQ(body->subentBody({OdModelerSubentType::kEdge, 13}, result).code, eInvalidInput);
  EXPECT_EQ(result, nullptr);
}

TEST_F(OdModelerBodyTest, MassPropertiesFollowTheFormulas) {
  const OdModelerMassProperties mass = box(2.0, 4.0, 6.0, {10.0, 20.0, 30.0})->massProperties();
  EXPECT_TRUE(mass.centroid.isEqualTo({11.0, 22.0, 33.0}, kTol));
  EXPECT_NEAR(mass.inertia[0][0], 48.0 * (16.0 + 36.0) / 12.0, 1e-6);
  EXPECT_NEAR(mass.inertia[1][1], 48.0 * (4.0 + 36.0) / 12.0, 1e-6);
  EXPECT_NEAR(mass.inertia[2][2], 48.0 * (4.0 + 16.0) / 12.0, 1e-6);
  EXPECT_NEAR(mass.inertia[0][1], 0.0, 1e-6);
}

TEST_F(OdModelerBodyTest, TransformationsScaleTheVolumeAndKeepTheOrder) {
  const OdModelerBodyPtr plate = plateWithHole();
  const double volume = plate->massProperties().volume;
  const OdGeMatrix3d rigid = OdGeMatrix3d::rotation(0.7, {1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
  struct Row {
    const char* name;
    OdGeMatrix3d matrix;
    bool keepsKinds;
  };
  const Row rows[] = {
      {"rigid", rigid, true},
      {"uniform", rigid * OdGeMatrix3d::scaling(2.5), true},
      {"mirror", rigid * OdGeMatrix3d::mirroring(OdGePlane::kXYPlane), true},
      {"affine", rigid * OdGeMatrix3d::scaling(OdGeScale3d(1.0, 2.0, 0.5)), false},
      {"affine mirror", rigid * OdGeMatrix3d::scaling(OdGeScale3d(-1.0, 2.0, 0.25)), false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const OdModelerBodyPtr body = moved(plate, row.matrix);
    EXPECT_NEAR(body->massProperties().volume, volume * std::abs(row.matrix.det()), volume * 1e-5);
    EXPECT_TRUE(succeeded(body->check()));
    ASSERT_EQ(body->numFaces(), plate->numFaces());
    ASSERT_EQ(body->numEdges(), plate->numEdges());
    ASSERT_EQ(body->numVertices(), plate->numVertices());
    for (OdUInt32 i = 1; i <= plate->numVertices(); ++i) {
      EXPECT_TRUE(body->vertex(i).point.isEqualTo(row.matrix * plate->vertex(i).point, kTol));
    }
    for (OdUInt32 i = 1; i <= plate->numFaces(); ++i) {
      EXPECT_EQ(body->face(i).edges, plate->face(i).edges);
      EXPECT_LT(body->face(i).centroid.distanceTo(row.matrix * plate->face(i).centroid), 1e-3);
      if (row.keepsKinds) {
        EXPECT_EQ(body->face(i).kind, plate->face(i).kind);
      }
    }
  }
}

TEST_F(OdModelerBodyTest, SingularAndBrokenMatricesAreRefused) {
  const OdModelerBodyPtr body = box(1.0, 1.0, 1.0);
  OdGeMatrix3d broken;
  broken(0, 3) = std::numeric_limits<double>::infinity();
  for (const OdGeMatrix3d& m : {OdGeMatrix3d::scaling(OdGeScale3d(1.0, 0.0, 1.0)), broken}) {
    OdModelerBodyPtr result = body;
    EXPECT_EQ(body->transformed(m, result).code, eInvalidInput);
    EXPECT_EQ(result, body);
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
    ASSERT_EQ(fine.faces.size(), 7u);
    ASSERT_EQ(fine.edges.size(), 15u);
    EXPECT_NEAR(volumeOf(fine), volume, volume * 1e-5);
    EXPECT_GT(std::abs(volumeOf(coarse) - volume), std::abs(volumeOf(fine) - volume));
    const OdUInt32 hole = faceOfKind(*body, OdModelerSurfaceKind::kCylinder);
    const OdModelerFaceMesh& wall = fine.faces[hole - 1];
    const OdModelerFace& cylinder = body->face(hole);
    for (std::size_t i = 0; i < wall.points.size(); ++i) {
      const OdGeVector3d away = wall.points[i] - cylinder.origin;
      EXPECT_LT(wall.normals[i].dotProduct(away), 0.0);
      EXPECT_TRUE(wall.normals[i].isUnitLength(kTol));
    }
  }
  EXPECT_EQ(bytesOf(plate), before) << "meshing must not change the body";
}

TEST_F(OdModelerBodyTest, MeshOfAConeHasANormalAtItsTip) {
  OdModelerBodyPtr cone;
  ASSERT_TRUE(succeeded(odModeler().cone(2.0, 0.0, 3.0, cone)));
  OdModelerMesh mesh;
  ASSERT_TRUE(succeeded(cone->tessellate({}, mesh)));
  for (const OdModelerFaceMesh& face : mesh.faces) {
    for (const OdGeVector3d& normal : face.normals) EXPECT_GT(normal.length(), 0.5);
  }
  EXPECT_EQ(cone->tessellate({-1.0, 0.3}, mesh).code, eInvalidInput);
  EXPECT_EQ(cone->tessellate({0.1, 0.0}, mesh).code, eInvalidInput);
}

TEST_F(OdModelerBodyTest, SubentityCopiesStandAlone) {
  OdModelerBodyAttributes attributes;
  const OdModelerBodyPtr plain = plateWithHole();
  const OdUInt32 hole = faceOfKind(*plain, OdModelerSurfaceKind::kCylinder);
  attributes.color = OdModelerColor{1, 2, 3};
  attributes.faceColors[hole] = {9, 8, 7};
  attributes.faceColors[99] = {0, 0, 0};
  const OdModelerBodyPtr plate = plain->withAttributes(attributes);
  EXPECT_EQ(plate->attributes().faceColors.size(), 1u) << "a face that is not there is dropped";
  OdModelerBodyPtr face;
  OdModelerBodyPtr edge;
  ASSERT_TRUE(succeeded(plate->subentBody({OdModelerSubentType::kFace, hole}, face)));
  ASSERT_TRUE(succeeded(plate->subentBody({OdModelerSubentType::kEdge, 1}, edge)));
  EXPECT_EQ(face->kind(), OdModelerBodyKind::kSheet);
  EXPECT_EQ(face->attributes().color, (OdModelerColor{9, 8, 7}));
  EXPECT_NEAR(face->massProperties().area, plate->face(hole).area, 1e-6);
  EXPECT_EQ(face->massProperties().volume, 0.0);
  EXPECT_EQ(edge->kind(), OdModelerBodyKind::kWire);
  EXPECT_NEAR(edge->edge(1).length, plate->edge(1).length, 1e-9);
  EXPECT_EQ(bodyOf(bytesOf(edge))->numVertices(), 2u);
}

}  // namespace
