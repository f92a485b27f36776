// Triangles and polylines of a body.
#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepGProp_Face.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_TangentialDeflection.hxx>
#include <Poly_PolygonOnTriangulation.hxx>
#include <Poly_Triangulation.hxx>
#include <Precision.hxx>
#include <TopoDS.hxx>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_guard.h"

namespace od_occt {
namespace {

constexpr double kDefaultDeflectionRatio = 1e-3;  // of the body's diagonal

// Triangles of a face in world coordinates, wound to the outside.
OdModelerFaceMesh faceMesh(const TopoDS_Face& face) {
  OdModelerFaceMesh mesh;
  TopLoc_Location location;
  const Handle(Poly_Triangulation)& source = BRep_Tool::Triangulation(face, location);
  if (source.IsNull()) return mesh;
  const gp_Trsf& placement = location.Transformation();
  BRepGProp_Face surface(face);
  const auto count = static_cast<std::size_t>(source->NbNodes());
  mesh.points.reserve(count);
  mesh.normals.reserve(count);
  for (int i = 1; i <= source->NbNodes(); ++i) {
    mesh.points.push_back(toPoint(source->Node(i).Transformed(placement)));
    gp_Pnt point;
    gp_Vec normal;
    if (source->HasUVNodes()) {
      surface.Normal(source->UVNode(i).X(), source->UVNode(i).Y(), point, normal);
    }
    const double length = normal.Magnitude();
    mesh.normals.push_back(length > gp::Resolution() ? toVector(normal / length) : OdGeVector3d());
  }
  const bool reversed = face.Orientation() == TopAbs_REVERSED;
  mesh.triangles.reserve(static_cast<std::size_t>(source->NbTriangles()));
  for (int i = 1; i <= source->NbTriangles(); ++i) {
    int corner[3] = {};
    source->Triangle(i).Get(corner[0], corner[1], corner[2]);
    if (reversed) std::swap(corner[1], corner[2]);
    mesh.triangles.push_back({static_cast<OdUInt32>(corner[0] - 1),
                              static_cast<OdUInt32>(corner[1] - 1),
                              static_cast<OdUInt32>(corner[2] - 1)});
  }
  return mesh;
}

// A point where the surface has no normal (the tip of a cone) takes that of its triangles.
void completeNormals(OdModelerFaceMesh& mesh) {
  std::vector<bool> missing(mesh.normals.size());
  bool any = false;
  for (std::size_t i = 0; i < missing.size(); ++i) {
    missing[i] = mesh.normals[i] == OdGeVector3d();
    any = any || missing[i];
  }
  if (!any) return;
  for (const auto& t : mesh.triangles) {
    const OdGeVector3d areaNormal =
        (mesh.points[t[1]] - mesh.points[t[0]]).crossProduct(mesh.points[t[2]] - mesh.points[t[0]]);
    for (const OdUInt32 corner : t) {
      if (missing[corner]) mesh.normals[corner] += areaNormal;
    }
  }
  for (std::size_t i = 0; i < missing.size(); ++i) {
    const double length = mesh.normals[i].length();
    if (missing[i]) {
      mesh.normals[i] = length > 0.0 ? mesh.normals[i] / length : OdGeVector3d::kZAxis;
    }
  }
}

// The polyline that the mesh of an adjacent face has along the edge, so that edges and faces meet;
// an edge without one is approximated by itself.
std::vector<OdGePoint3d> edgeLine(const TopoDS_Edge& edge, double deflection, double angle) {
  std::vector<OdGePoint3d> line;
  if (BRep_Tool::Degenerated(edge)) return line;
  Handle(Poly_PolygonOnTriangulation) polygon;
  Handle(Poly_Triangulation) triangles;
  TopLoc_Location location;
  BRep_Tool::PolygonOnTriangulation(edge, polygon, triangles, location);
  if (!polygon.IsNull()) {
    for (int i = 1; i <= polygon->NbNodes(); ++i) {
      const gp_Pnt point = triangles->Node(polygon->Node(i));
      line.push_back(toPoint(point.Transformed(location.Transformation())));
    }
    return line;
  }
  const BRepAdaptor_Curve curve(edge);
  const GCPnts_TangentialDeflection points(curve, angle, deflection);
  for (int i = 1; i <= points.NbPoints(); ++i) line.push_back(toPoint(points.Value(i)));
  return line;
}

bool acceptable(const OdModelerMeshOptions& options) {
  return std::isfinite(options.deflection) && std::isfinite(options.angle) &&
         options.deflection >= 0.0 && options.angle > 0.0;
}

OdModelerMesh meshOf(const TopoDS_Shape& shape, double deflection, double angle) {
  // Meshing writes into the shape: it works on new topology over the same geometry.
  BRepBuilderAPI_Copy copy(shape, /*copyGeom=*/Standard_False, /*copyMesh=*/Standard_False);
  IMeshTools_Parameters parameters;
  parameters.Deflection = deflection;
  parameters.Angle = angle;
  parameters.InParallel = Standard_False;
  const BRepMesh_IncrementalMesh mesher(copy.Shape(), parameters);
  const Topology topology(copy.Shape());
  OdModelerMesh mesh;
  for (int i = 1; i <= topology.faces.Extent(); ++i) {
    mesh.faces.push_back(faceMesh(TopoDS::Face(topology.faces(i))));
    completeNormals(mesh.faces.back());
  }
  for (int i = 1; i <= topology.edges.Extent(); ++i) {
    mesh.edges.push_back(edgeLine(TopoDS::Edge(topology.edges(i)), deflection, angle));
  }
  return mesh;
}

}  // namespace

OdStatus Body::tessellate(const OdModelerMeshOptions& options, OdModelerMesh& mesh) const {
  if (!acceptable(options)) {
    OdString text;
    text.format(L"tessellate: deflection %g and angle %g must be positive numbers",
                options.deflection, options.angle);
    return {eInvalidInput, text};
  }
  return guarded("tessellate", [&]() -> OdStatus {
    double deflection = options.deflection;
    if (deflection == 0.0) deflection = extents().diagonal().length() * kDefaultDeflectionRatio;
    mesh = meshOf(m_shape, std::max(deflection, Precision::Confusion()), options.angle);
    return {};
  });
}

}  // namespace od_occt
