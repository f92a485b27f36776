// Where a subentity lies: its box, and what of it is nearest to a point.
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp_Face.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Geom2d_Curve.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp.hxx>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_guard.h"

namespace od_occt {

const TopoDS_Shape& Body::part(OdModelerSubent subent) const {
  if (!hasSubent(subent)) throw OdError_InvalidIndex(subent.index, numSubents(subent.type));
  return topology().map(subent.type)(static_cast<int>(subent.index));
}

OdGeExtents3d Body::subentExtents(OdModelerSubent subent) const {
  Bnd_Box box;
  if (subent.type == OdModelerSubentType::kFace && hasSubent(subent)) {
    box = faceBoxes()[subent.index - 1];
  } else {
    BRepBndLib::Add(part(subent), box, /*useTriangulation=*/Standard_False);
  }
  if (box.IsVoid() || box.IsOpen()) return {};
  return {toPoint(box.CornerMin()), toPoint(box.CornerMax())};
}

namespace {

BRepExtrema_DistShapeShape measured(const OdGePoint3d& point, const TopoDS_Shape& part) {
  const TopoDS_Shape probe = BRepBuilderAPI_MakeVertex(gp_Pnt(point.x, point.y, point.z)).Vertex();
  BRepExtrema_DistShapeShape measure(probe, part);
  if (!measure.IsDone() || measure.NbSolution() == 0) {
    throw OdError(eModelerError, OdString(L"the distance to a subentity cannot be computed"));
  }
  return measure;
}

// Where the first solution lies in the parameters of the face.
gp_Pnt2d parametersOf(const BRepExtrema_DistShapeShape& measure, const TopoDS_Face& face) {
  const TopoDS_Shape support = measure.SupportOnShape2(1);
  gp_Pnt2d at;
  if (measure.SupportTypeShape2(1) == BRepExtrema_IsInFace) {
    Standard_Real u = 0.0, v = 0.0;
    measure.ParOnFaceS2(1, u, v);
    at.SetCoord(u, v);
  } else if (measure.SupportTypeShape2(1) == BRepExtrema_IsOnEdge) {
    const TopoDS_Edge& edge = TopoDS::Edge(support);
    Standard_Real parameter = 0.0, first = 0.0, last = 0.0;
    measure.ParOnEdgeS2(1, parameter);
    at = BRep_Tool::CurveOnSurface(edge, face, first, last)->Value(parameter);
  } else {
    at = BRep_Tool::Parameters(TopoDS::Vertex(support), face);
  }
  return at;
}

}  // namespace

double Body::distanceTo(OdModelerSubent subent, const OdGePoint3d& point) const {
  return measured(point, part(subent)).Value();
}

OdModelerFacePoint Body::nearestOnFace(OdUInt32 index, const OdGePoint3d& point) const {
  const TopoDS_Face& face = TopoDS::Face(part({OdModelerSubentType::kFace, index}));
  const BRepExtrema_DistShapeShape measure = measured(point, face);
  const gp_Pnt2d at = parametersOf(measure, face);
  gp_Pnt unused;
  gp_Vec normal;
  BRepGProp_Face(face).Normal(at.X(), at.Y(), unused, normal);
  OdModelerFacePoint found{toPoint(measure.PointOnShape2(1)), {}};
  const double length = normal.Magnitude();
  if (length > gp::Resolution()) found.normal = toVector(normal / length);
  return found;
}

}  // namespace od_occt
