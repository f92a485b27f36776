// Solids swept from a flat outline.
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <GC_MakeArcOfCircle.hxx>
#include <Precision.hxx>
#include <ShapeFix_Face.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>
#include <cmath>
#include <gp_Ax1.hxx>
#include <gp_Pln.hxx>
#include <numbers>

#include "platform/modeler_occt/occt_body.h"
#include "platform/modeler_occt/occt_bridge.h"
#include "platform/modeler_occt/occt_convert.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {
namespace {

// The profile's coordinates: x along u, y perpendicular to it towards v.
class Frame {
 public:
  explicit Frame(const OdGePlane& plane)
      : m_origin(plane.origin()),
        m_x(plane.uAxis().normal()),
        m_y(plane.normal().crossProduct(m_x)) {}
  [[nodiscard]] gp_Pnt at(const OdGePoint2d& p) const {
    return toOcct(m_origin + m_x * p.x + m_y * p.y);
  }

 private:
  OdGePoint3d m_origin;
  OdGeVector3d m_x;
  OdGeVector3d m_y;
};

// The middle of the arc: off the middle of the chord by bulge times half the chord, to the right
// of the way for a counter-clockwise arc.
OdGePoint2d arcMiddle(const OdModelerProfileVertex& from, const OdGePoint2d& to) {
  const OdGeVector2d chord = to - from.point;
  return from.point + chord * 0.5 - chord.perpVector() * (0.5 * from.bulge);
}

TopoDS_Edge side(const Frame& frame, const OdModelerProfileVertex& from, const OdGePoint2d& to,
                 const TopoDS_Vertex& start, const TopoDS_Vertex& end) {
  if (from.bulge == 0.0) return BRepBuilderAPI_MakeEdge(start, end).Edge();
  const GC_MakeArcOfCircle arc(frame.at(from.point), frame.at(arcMiddle(from, to)), frame.at(to));
  return BRepBuilderAPI_MakeEdge(arc.Value(), start, end).Edge();
}

TopoDS_Wire wireOf(const Frame& frame, const OdModelerLoop& loop) {
  std::vector<TopoDS_Vertex> corners;
  for (const OdModelerProfileVertex& v : loop) {
    corners.push_back(BRepBuilderAPI_MakeVertex(frame.at(v.point)).Vertex());
  }
  BRepBuilderAPI_MakeWire wire;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const std::size_t next = (i + 1) % loop.size();
    wire.Add(side(frame, loop[i], loop[next].point, corners[i], corners[next]));
  }
  return wire.Wire();
}

OdStatus checkLoop(const OdModelerLoop& loop, unsigned number) {
  OdString text;
  const bool bent = loop.size() == 2 && (loop[0].bulge != 0.0 || loop[1].bulge != 0.0);
  if (loop.size() < 3 && !bent) {
    text.format(L"profile: loop %u has %u corners, it must have 3, or 2 and an arc", number,
                static_cast<unsigned>(loop.size()));
    return {eInvalidInput, text};
  }
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const OdGePoint2d& here = loop[i].point;
    const double length = here.distanceTo(loop[(i + 1) % loop.size()].point);
    if (std::isfinite(length) && std::isfinite(loop[i].bulge) && length > Precision::Confusion()) {
      continue;
    }
    text.format(L"profile: side %u of loop %u has length %g and bulge %g",
                static_cast<unsigned>(i + 1), number, length, loop[i].bulge);
    return {eInvalidInput, text};
  }
  return {};
}

OdStatus checkLoops(const OdModelerProfile& profile) {
  OdStatus status = checkLoop(profile.outer, 0);
  unsigned number = 0;
  for (const OdModelerLoop& hole : profile.holes) {
    if (status.ok()) status = checkLoop(hole, ++number);
  }
  return status;
}

// A sound face with its boundaries oriented, whichever way the loops run.
OdStatus faceOf(const OdModelerProfile& profile, TopoDS_Face& result) {
  const Frame frame(profile.plane);
  const gp_Pln plane(toOcct(profile.plane.origin()), toOcctDir(profile.plane.normal()));
  BRepBuilderAPI_MakeFace face(plane, wireOf(frame, profile.outer));
  for (const OdModelerLoop& hole : profile.holes) face.Add(wireOf(frame, hole));
  if (!face.IsDone()) return failure(eInvalidInput, "profile", "the loops bound no area");
  ShapeFix_Face fix(face.Face());
  fix.FixOrientation();
  const TopoDS_Face fixed = fix.Face();
  OdStatus sound = checkShape(fixed);
  if (!sound.ok()) return {eInvalidInput, OdString(L"profile: ") + sound.text};
  result = fixed;
  return {};
}

OdStatus finish(const char* operation, const TopoDS_Shape& shape, OdModelerBodyPtr& result) {
  if (OdStatus sound = checkShape(shape); !sound.ok()) return sound;
  OdModelerBodyPtr body = odBodyFromOcct(shape);
  if (!body || body->kind() != OdModelerBodyKind::kSolid ||
      !(body->massProperties().volume > 0.0)) {
    return failure(eModelerInvalidBody, operation, "the outcome has no volume");
  }
  result = std::move(body);
  return {};
}

double distanceToAxis(const gp_Pnt& point, const gp_Ax1& axis) {
  return gp_Vec(axis.Location(), point).Crossed(gp_Vec(axis.Direction())).Magnitude();
}

// Side of the axis within its plane, for a point of the profile; 0 on the axis.
int sideOfAxis(const gp_Pnt& point, const gp_Ax1& axis, const gp_Vec& planeNormal) {
  if (distanceToAxis(point, axis) <= Precision::Confusion()) return 0;
  const gp_Vec across = planeNormal.Crossed(gp_Vec(axis.Direction()));
  return gp_Vec(axis.Location(), point).Dot(across) > 0.0 ? 1 : -1;
}

bool crossesAxis(const OdModelerProfile& profile, const gp_Ax1& axis) {
  const Frame frame(profile.plane);
  const gp_Vec normal = toOcct(profile.plane.normal());
  bool left = false;
  bool right = false;
  const auto note = [&](const OdGePoint2d& p) {
    const int s = sideOfAxis(frame.at(p), axis, normal);
    left = left || s > 0;
    right = right || s < 0;
  };
  for (std::size_t i = 0; i < profile.outer.size(); ++i) {
    note(profile.outer[i].point);
    note(arcMiddle(profile.outer[i], profile.outer[(i + 1) % profile.outer.size()].point));
  }
  return left && right;
}

}  // namespace

OdStatus extrude(const OdModelerProfile& profile, const OdGeVector3d& direction,
                 OdModelerBodyPtr& result) {
  if (OdStatus status = checkLoops(profile); !status.ok()) return status;
  const double height = std::abs(direction.dotProduct(profile.plane.normal()));
  if (!(std::isfinite(direction.length()) && height > Precision::Confusion())) {
    OdString text;
    text.format(L"extrusion: height over the profile is %g, it must be more than %g", height,
                Precision::Confusion());
    return {eInvalidInput, text};
  }
  return guarded("extrusion", [&]() -> OdStatus {
    TopoDS_Face face;
    if (OdStatus status = faceOf(profile, face); !status.ok()) return status;
    return finish("extrusion", BRepPrimAPI_MakePrism(face, toOcct(direction)).Shape(), result);
  });
}

OdStatus revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                 const OdGeVector3d& axis, double angle, OdModelerBodyPtr& result) {
  constexpr double kFullTurn = 2.0 * std::numbers::pi;
  if (OdStatus status = checkLoops(profile); !status.ok()) return status;
  if (!(std::abs(angle) > Precision::Angular() &&
        std::abs(angle) <= kFullTurn + Precision::Angular())) {
    OdString text;
    text.format(L"revolution: angle is %g, it must be up to a full turn of %g", angle, kFullTurn);
    return {eInvalidInput, text};
  }
  return guarded("revolution", [&]() -> OdStatus {
    const gp_Ax1 line(toOcct(axisPoint), toOcctDir(axis.normal()));
    if (!profile.plane.isOn(axisPoint, OdGeTol(Precision::Confusion())) ||
        !axis.isPerpendicularTo(profile.plane.normal(), OdGeTol(Precision::Angular()))) {
      return failure(eInvalidInput, "revolution", "the axis is not in the plane of the profile");
    }
    if (crossesAxis(profile, line)) {
      return failure(eInvalidInput, "revolution", "the axis crosses the profile");
    }
    TopoDS_Face face;
    if (OdStatus status = faceOf(profile, face); !status.ok()) return status;
    const bool full = std::abs(angle) >= kFullTurn - Precision::Angular();
    const TopoDS_Shape shape = full ? BRepPrimAPI_MakeRevol(face, line).Shape()
                                    : BRepPrimAPI_MakeRevol(face, line, angle).Shape();
    return finish("revolution", shape, result);
  });
}

}  // namespace od_occt
