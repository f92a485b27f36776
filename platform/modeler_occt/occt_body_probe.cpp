// Where a subentity lies: its box, and its distance from a point.
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <Bnd_Box.hxx>

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
  BRepBndLib::Add(part(subent), box, /*useTriangulation=*/Standard_False);
  if (box.IsVoid() || box.IsOpen()) return {};
  return {toPoint(box.CornerMin()), toPoint(box.CornerMax())};
}

double Body::distanceTo(OdModelerSubent subent, const OdGePoint3d& point) const {
  const TopoDS_Shape probe = BRepBuilderAPI_MakeVertex(gp_Pnt(point.x, point.y, point.z)).Vertex();
  const BRepExtrema_DistShapeShape measure(probe, part(subent));
  if (!measure.IsDone()) {
    throw OdError(eModelerError, OdString(L"the distance to a subentity cannot be computed"));
  }
  return measure.Value();
}

}  // namespace od_occt
