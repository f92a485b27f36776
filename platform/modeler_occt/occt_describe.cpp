// What faces and edges of a shape are: kind, parameters, size, position.
#include <BOPTools_AlgoTools3D.hxx>
#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepGProp.hxx>
#include <BRepGProp_Face.hxx>
#include <BRepTools.hxx>
#include <BRepTopAdaptor_FClass2d.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <IntTools_Context.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>
#include <cmath>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_recognise.h"

namespace od_occt {
namespace {

// A parameter pair inside the boundary: the middle of the parameter box where it is inside, else
// the middle of a hatch line.
gp_Pnt2d insideParameters(const TopoDS_Face& face) {
  double u1 = 0.0;
  double u2 = 0.0;
  double v1 = 0.0;
  double v2 = 0.0;
  BRepTools::UVBounds(face, u1, u2, v1, v2);
  gp_Pnt2d uv((u1 + u2) / 2.0, (v1 + v2) / 2.0);
  BRepTopAdaptor_FClass2d classifier(face, Precision::PConfusion());
  if (classifier.Perform(uv) == TopAbs_IN) return uv;
  gp_Pnt point;
  const Handle(IntTools_Context) context = new IntTools_Context;
  gp_Pnt2d hatched;
  if (BOPTools_AlgoTools3D::PointInFace(face, point, hatched, context) == 0) uv = hatched;
  return uv;
}

void setPointAndNormal(const TopoDS_Face& face, OdModelerFace& result) {
  const gp_Pnt2d uv = insideParameters(face);
  gp_Pnt point;
  gp_Vec normal;
  BRepGProp_Face(face).Normal(uv.X(), uv.Y(), point, normal);
  result.pointOnFace = toPoint(point);
  const double length = normal.Magnitude();
  if (length > gp::Resolution()) result.normal = toVector(normal / length);
}

// Parameters of the analytic surfaces. A face of revolution is inward when its outward normal runs
// against the direction from the axis (or centre, or tube circle) to the point.
void setSurface(const TopoDS_Face& face, OdModelerFace& result) {
  const BRepAdaptor_Surface surface(face, /*R=*/Standard_False);
  const auto inwardFrom = [&](const OdGePoint3d& inner) {
    return result.normal.dotProduct(result.pointOnFace - inner) < 0.0;
  };
  const auto footOnAxis = [&](const OdGePoint3d& origin, const OdGeVector3d& axis) {
    return origin + axis * axis.dotProduct(result.pointOnFace - origin);
  };
  const auto setAxis = [&](const gp_Ax1& axis) {
    result.origin = toPoint(axis.Location());
    result.axis = toVector(axis.Direction());
  };
  switch (surface.GetType()) {
    case GeomAbs_Plane:
      result.kind = OdModelerSurfaceKind::kPlane;
      result.origin = toPoint(surface.Plane().Location());
      break;
    case GeomAbs_Cylinder:
      result.kind = OdModelerSurfaceKind::kCylinder;
      setAxis(surface.Cylinder().Axis());
      result.radius = surface.Cylinder().Radius();
      break;
    case GeomAbs_Cone:
      result.kind = OdModelerSurfaceKind::kCone;
      setAxis(surface.Cone().Axis());
      result.origin = toPoint(surface.Cone().Apex());
      result.halfAngle = std::abs(surface.Cone().SemiAngle());
      break;
    case GeomAbs_Sphere:
      result.kind = OdModelerSurfaceKind::kSphere;
      result.origin = toPoint(surface.Sphere().Location());
      result.radius = surface.Sphere().Radius();
      break;
    case GeomAbs_Torus:
      result.kind = OdModelerSurfaceKind::kTorus;
      setAxis(surface.Torus().Axis());
      result.radius = surface.Torus().MajorRadius();
      result.minorRadius = surface.Torus().MinorRadius();
      break;
    default:
      if (const std::optional<RecognisedSurface> known = recogniseSurface(face)) {
        result.kind = known->kind;
        result.origin = known->origin;
        result.axis = known->axis;
        result.radius = known->radius;
        result.minorRadius = known->minorRadius;
        result.halfAngle = known->halfAngle;
      }
      break;
  }
  switch (result.kind) {
    case OdModelerSurfaceKind::kPlane:
      result.axis = result.normal;
      break;
    case OdModelerSurfaceKind::kCylinder:
    case OdModelerSurfaceKind::kCone:
      result.inward = inwardFrom(footOnAxis(result.origin, result.axis));
      break;
    case OdModelerSurfaceKind::kSphere:
      result.inward = inwardFrom(result.origin);
      break;
    case OdModelerSurfaceKind::kTorus: {
      const OdGeVector3d out = result.pointOnFace - footOnAxis(result.origin, result.axis);
      const double length = out.length();
      result.inward = length > 0.0 && inwardFrom(result.origin + out * (result.radius / length));
      break;
    }
    case OdModelerSurfaceKind::kOther:
      break;
  }
}

void setCurve(const TopoDS_Edge& edge, const BRepAdaptor_Curve& curve, OdModelerEdge& result) {
  switch (curve.GetType()) {
    case GeomAbs_Line:
      result.kind = OdModelerCurveKind::kLine;
      break;
    case GeomAbs_Circle:
      result.kind = OdModelerCurveKind::kCircle;
      result.center = toPoint(curve.Circle().Location());
      result.axis = toVector(curve.Circle().Axis().Direction());
      result.radius = curve.Circle().Radius();
      result.minorRadius = result.radius;
      break;
    case GeomAbs_Ellipse:
      result.kind = OdModelerCurveKind::kEllipse;
      result.center = toPoint(curve.Ellipse().Location());
      result.axis = toVector(curve.Ellipse().Axis().Direction());
      result.radius = curve.Ellipse().MajorRadius();
      result.minorRadius = curve.Ellipse().MinorRadius();
      break;
    default:
      if (const std::optional<RecognisedCurve> known = recogniseCurve(edge)) {
        result.kind = known->kind;
        result.center = known->center;
        result.axis = known->axis;
        result.radius = result.minorRadius = known->radius;
      }
      break;
  }
}

OdUInt32 indexOf(const TopTools_IndexedMapOfShape& map, const TopoDS_Shape& shape) {
  return shape.IsNull() ? 0 : static_cast<OdUInt32>(map.FindIndex(shape));
}

bool isSeam(const Topology& topology, const TopoDS_Edge& edge, OdUInt32 index) {
  const std::vector<OdUInt32>& faces = topology.facesOfEdge[index - 1];
  return faces.size() == 1 &&
         BRep_Tool::IsClosed(edge, TopoDS::Face(topology.faces(static_cast<int>(faces.front()))));
}

}  // namespace

OdModelerSurfaceKind surfaceKindOf(const TopoDS_Shape& face) {
  switch (BRepAdaptor_Surface(TopoDS::Face(face), /*R=*/Standard_False).GetType()) {
    case GeomAbs_Plane:
      return OdModelerSurfaceKind::kPlane;
    case GeomAbs_Cylinder:
      return OdModelerSurfaceKind::kCylinder;
    case GeomAbs_Cone:
      return OdModelerSurfaceKind::kCone;
    case GeomAbs_Sphere:
      return OdModelerSurfaceKind::kSphere;
    case GeomAbs_Torus:
      return OdModelerSurfaceKind::kTorus;
    default:
      return OdModelerSurfaceKind::kOther;
  }
}

OdModelerCurveKind curveKindOf(const TopoDS_Shape& shape) {
  const TopoDS_Edge& edge = TopoDS::Edge(shape);
  if (BRep_Tool::Degenerated(edge)) return OdModelerCurveKind::kOther;
  switch (BRepAdaptor_Curve(edge).GetType()) {
    case GeomAbs_Line:
      return OdModelerCurveKind::kLine;
    case GeomAbs_Circle:
      return OdModelerCurveKind::kCircle;
    case GeomAbs_Ellipse:
      return OdModelerCurveKind::kEllipse;
    default:
      return OdModelerCurveKind::kOther;
  }
}

OdModelerFace describeFace(const Topology& topology, OdUInt32 index) {
  const TopoDS_Face& face = TopoDS::Face(topology.faces(static_cast<int>(index)));
  OdModelerFace result;
  GProp_GProps area;
  measureArea(face, area);
  result.area = area.Mass();
  result.centroid = toPoint(area.CentreOfMass());
  setPointAndNormal(face, result);
  setSurface(face, result);
  for (const OdUInt32 edge : topology.edgesOfFace[index - 1]) {
    if (!BRep_Tool::Degenerated(TopoDS::Edge(topology.edges(static_cast<int>(edge))))) {
      result.edges.push_back(edge);
    }
  }
  return result;
}

OdModelerEdge describeEdge(const Topology& topology, OdUInt32 index) {
  const TopoDS_Edge& edge = TopoDS::Edge(topology.edges(static_cast<int>(index)));
  OdModelerEdge result;
  result.faces = topology.facesOfEdge[index - 1];
  TopoDS_Vertex first;
  TopoDS_Vertex last;
  TopExp::Vertices(edge, first, last, /*CumOri=*/Standard_True);
  result.startVertex = indexOf(topology.vertices, first);
  result.endVertex = indexOf(topology.vertices, last);
  result.degenerate = BRep_Tool::Degenerated(edge);
  if (result.degenerate) {
    if (!first.IsNull()) result.midPoint = toPoint(BRep_Tool::Pnt(first));
    return result;
  }
  result.seam = isSeam(topology, edge, index);
  GProp_GProps length;
  BRepGProp::LinearProperties(edge, length);
  result.length = length.Mass();
  const BRepAdaptor_Curve curve(edge);
  gp_Pnt middle;
  gp_Vec tangent;
  curve.D1((curve.FirstParameter() + curve.LastParameter()) / 2.0, middle, tangent);
  result.midPoint = toPoint(middle);
  if (edge.Orientation() == TopAbs_REVERSED) tangent.Reverse();
  if (tangent.Magnitude() > gp::Resolution()) result.direction = toVector(tangent.Normalized());
  setCurve(edge, curve, result);
  return result;
}

}  // namespace od_occt
