// Which side of a surface a face lies on, judged at an edge that they share.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <gp_Vec.hxx>
#include <optional>

namespace od_occt {

enum class Side { kUnknown, kInside, kOutside };

/// A use of an edge by a face: the face as it is oriented in its body, the edge as it is oriented
/// in that face.
struct EdgeUse {
  TopoDS_Edge edge;
  TopoDS_Face face;
};

/// The point of an edge at which directions are compared; empty for an edge without a curve.
[[nodiscard]] std::optional<gp_Pnt> pointAt(const TopoDS_Edge& edge);
/// The unit normal of a face, away from the material, at pointAt of an edge of it. Empty where
/// the surface has none, or the edge has no trace on it.
[[nodiscard]] std::optional<gp_Vec> normalAt(const EdgeUse& use);

/// On which side of a body a face lies near an edge, at which two faces of the body meet: between
/// them in the material, or outside. Unknown where it is within kSmallestAngle of one of them, or
/// they enclose less than that.
[[nodiscard]] Side sideAt(const EdgeUse& asked, const EdgeUse& first, const EdgeUse& second);

/// In radians: below it, what two faces do further from their edge is not decided by their
/// directions at it. Far above what modellers leave between surfaces that are meant to be tangent
/// (1e-7 to 1e-4).
inline constexpr double kSmallestAngle = 1e-3;

}  // namespace od_occt
