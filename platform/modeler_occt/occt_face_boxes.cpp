// Boxes of the faces of a body and of the loops of a face.
#include "platform/modeler_occt/occt_face_boxes.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBndLib.hxx>
#include <BRep_Tool.hxx>
#include <BndLib_Add3dCurve.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Vertex.hxx>
#include <algorithm>
#include <cmath>
#include <utility>

namespace od_occt {
namespace {

double low(const Bnd_Box& box) { return box.CornerMin().X(); }

void addEdge(const TopoDS_Edge& edge, Bnd_Box& box) {
  if (BRep_Tool::Degenerated(edge)) return;
  const BRepAdaptor_Curve curve(edge);
  switch (curve.GetType()) {
    case GeomAbs_Line:
      box.Add(BRep_Tool::Pnt(TopExp::FirstVertex(edge)));
      box.Add(BRep_Tool::Pnt(TopExp::LastVertex(edge)));
      break;
    case GeomAbs_Circle: {  // the whole circle
      const gp_Circ circle = curve.Circle();
      const gp_Dir& axis = circle.Axis().Direction();
      for (int i = 1; i <= 3; ++i) {
        gp_XYZ reach;
        const double along = axis.Coord(i);
        reach.SetCoord(i, circle.Radius() * std::sqrt(std::max(0.0, 1.0 - along * along)));
        box.Add(gp_Pnt(circle.Location().XYZ() + reach));
        box.Add(gp_Pnt(circle.Location().XYZ() - reach));
      }
      break;
    }
    default:
      BndLib_Add3dCurve::Add(curve, BRep_Tool::Tolerance(edge), box);
  }
}

}  // namespace

BoxSet::BoxSet(std::vector<Bnd_Box> boxes) : m_boxes(std::move(boxes)) {
  std::ranges::sort(m_boxes, {}, low);
  for (const Bnd_Box& box : m_boxes) {
    m_whole.Add(box);
    m_longest = std::max(m_longest, box.CornerMax().X() - low(box));
  }
}

// Only boxes that begin within the longest one's extent before the box can meet it.
bool BoxSet::meets(const Bnd_Box& box) const {
  if (box.IsVoid() || m_whole.IsOut(box)) return false;
  const double from = low(box) - m_longest;
  const double to = box.CornerMax().X();
  for (auto it = std::ranges::lower_bound(m_boxes, from, {}, low);
       it != m_boxes.end() && low(*it) <= to; ++it) {
    if (!it->IsOut(box)) return true;
  }
  return false;
}

bool BoxSet::areApart() const {
  for (auto it = m_boxes.begin(); it != m_boxes.end(); ++it) {
    const double to = it->CornerMax().X();
    for (auto next = it + 1; next != m_boxes.end() && low(*next) <= to; ++next) {
      if (!it->IsOut(*next)) return false;
    }
  }
  return true;
}

Bnd_Box boxOfFace(const TopoDS_Face& face) {
  Bnd_Box box;
  BRepBndLib::Add(face, box, /*useTriangulation=*/Standard_False);
  return box;
}

Bnd_Box boxOfLoop(const TopoDS_Shape& loop, bool isPlane) {
  Bnd_Box box;
  double tolerance = 0.0;
  for (TopoDS_Iterator it(loop); it.More(); it.Next()) {
    const TopoDS_Edge& edge = TopoDS::Edge(it.Value());
    addEdge(edge, box);
    tolerance = std::max(tolerance, BRep_Tool::Tolerance(edge));
  }
  if (box.IsVoid()) return box;
  const double bulge = isPlane ? 0.0 : std::sqrt(box.SquareExtent());
  box.Enlarge(kReachMargin + tolerance + bulge);
  return box;
}

}  // namespace od_occt
