// Which side of a surface a face lies on, judged at an edge that they share.
//
// Seen along an edge, the two faces of a body that meet there are two half-lines, and the material
// is the sector between them: it begins at the first face, on the side away from its normal, and
// ends at the second one. A third face that begins at the edge is a half-line too, and lies inside
// exactly when its angle is in the sector. The half-line of a face is normal x tangent, with the
// tangent along the edge as the face uses it, since a face lies to the left of its boundary.
//
// This holds close to the edge. A face whose boundary lies on the body nowhere else is then inside
// or outside as a whole.
#include "platform/modeler_occt/occt_side_at_edge.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom_Curve.hxx>
#include <cmath>
#include <gp.hxx>
#include <numbers>

namespace od_occt {
namespace {

// Of the range of an edge; not the middle, where symmetric parts have their accidents.
constexpr double kWhere = 0.4375;

std::optional<gp_Vec> tangentOf(const TopoDS_Edge& edge) {
  double first = 0.0;
  double last = 0.0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (curve.IsNull()) return std::nullopt;
  gp_Pnt point;
  gp_Vec tangent;
  curve->D1(first + kWhere * (last - first), point, tangent);
  const double length = tangent.Magnitude();
  if (length <= gp::Resolution()) return std::nullopt;
  const bool isReversed = edge.Orientation() == TopAbs_REVERSED;
  return tangent / (isReversed ? -length : length);
}

// In the face, away from the edge and across it; of unit length.
std::optional<gp_Vec> acrossOf(const EdgeUse& use, const gp_Vec& normal) {
  const std::optional<gp_Vec> tangent = tangentOf(use.edge);
  if (!tangent) return std::nullopt;
  const gp_Vec across = normal.Crossed(*tangent);
  const double length = across.Magnitude();
  if (length < 0.5) return std::nullopt;  // the trace is not below the curve
  return across / length;
}

double fullAngle(const gp_Vec& of, const gp_Vec& x, const gp_Vec& y) {
  const double angle = std::atan2(of.Dot(y), of.Dot(x));
  return angle < 0.0 ? angle + 2.0 * std::numbers::pi : angle;
}

bool isNear(double angle, double to) { return std::abs(angle - to) < kSmallestAngle; }

bool isAlongFirst(double angle) {
  return isNear(angle, 0.0) || isNear(angle, 2.0 * std::numbers::pi);
}

}  // namespace

std::optional<gp_Pnt> pointAt(const TopoDS_Edge& edge) {
  double first = 0.0;
  double last = 0.0;
  const Handle(Geom_Curve) curve = BRep_Tool::Curve(edge, first, last);
  if (curve.IsNull()) return std::nullopt;
  return curve->Value(first + kWhere * (last - first));
}

std::optional<gp_Vec> normalAt(const EdgeUse& use) {
  double first = 0.0;
  double last = 0.0;
  const Handle(Geom2d_Curve) trace = BRep_Tool::CurveOnSurface(use.edge, use.face, first, last);
  if (trace.IsNull()) return std::nullopt;
  const gp_Pnt2d at = trace->Value(first + kWhere * (last - first));
  gp_Pnt point;
  gp_Vec alongU;
  gp_Vec alongV;
  BRepAdaptor_Surface(use.face, Standard_False).D1(at.X(), at.Y(), point, alongU, alongV);
  const gp_Vec normal = alongU.Crossed(alongV);
  const double length = normal.Magnitude();
  if (length <= gp::Resolution()) return std::nullopt;
  const bool isReversed = use.face.Orientation() == TopAbs_REVERSED;
  return normal / (isReversed ? -length : length);
}

Side sideAt(const EdgeUse& asked, const EdgeUse& first, const EdgeUse& second) {
  const std::optional<gp_Vec> normal = normalAt(first);
  const std::optional<gp_Vec> otherNormal = normalAt(second);
  const std::optional<gp_Vec> askedNormal = normalAt(asked);
  if (!normal || !otherNormal || !askedNormal) return Side::kUnknown;
  const std::optional<gp_Vec> x = acrossOf(first, *normal);
  const std::optional<gp_Vec> end = acrossOf(second, *otherNormal);
  const std::optional<gp_Vec> of = acrossOf(asked, *askedNormal);
  if (!x || !end || !of) return Side::kUnknown;
  const gp_Vec y = normal->Reversed();
  const double sector = fullAngle(*end, *x, y);
  const double angle = fullAngle(*of, *x, y);
  if (isAlongFirst(sector) || isAlongFirst(angle) || isNear(angle, sector)) return Side::kUnknown;
  return angle < sector ? Side::kInside : Side::kOutside;
}

}  // namespace od_occt
