// How subentities of two bodies lie to each other in space.
#include "bench/naming/shape_relation.h"

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <Bnd_Box.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Vertex.hxx>

#include "bench/naming/shapes.h"

namespace naming_bench {

OdGePoint3d pointOn(const OdModelerBody& body, OdModelerSubent subent) {
  switch (subent.type) {
    case OdModelerSubentType::kFace:
      return body.face(subent.index).pointOnFace;
    case OdModelerSubentType::kEdge:
      return body.edge(subent.index).midPoint;
    default:
      return body.vertex(subent.index).point;
  }
}

double distanceTo(const OdGePoint3d& point, const OdModelerBody& body, OdModelerSubent subent) {
  if (subent.type == OdModelerSubentType::kVertex) {
    return point.distanceTo(body.vertex(subent.index).point);
  }
  const TopoDS_Vertex vertex = BRepBuilderAPI_MakeVertex(gp_Pnt(point.x, point.y, point.z));
  const BRepExtrema_DistShapeShape distance(vertex, shapeOf(body, subent));
  return distance.IsDone() ? distance.Value() : 1e300;
}

OdGeExtents3d boxAround(const OdModelerBody& body, OdModelerSubent subent) {
  Bnd_Box box;
  BRepBndLib::Add(shapeOf(body, subent), box, /*useTriangulation=*/Standard_False);
  double low[3];
  double high[3];
  box.Get(low[0], low[1], low[2], high[0], high[1], high[2]);
  return {{low[0], low[1], low[2]}, {high[0], high[1], high[2]}};
}

}  // namespace naming_bench
