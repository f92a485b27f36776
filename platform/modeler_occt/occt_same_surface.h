// Whether faces lie on one surface, and the map from the parameters of one to those of the other.
#pragma once

#include <Geom2d_Curve.hxx>
#include <TopoDS_Face.hxx>
#include <gp_Vec2d.hxx>
#include <optional>

namespace od_occt {

/// Whether both faces lie on one surface, within the modeller's own measures of what is one point
/// and one direction. Two free-form surfaces always count as one: a comparison would cost too
/// much.
bool haveOneSurface(const TopoDS_Face& a, const TopoDS_Face& b);

/// The map from the parameters of a surface of revolution to those of the same surface with another
/// origin, start of the angle or sense of the axis.
struct ParameterMap {
  bool reversesU = false;
  bool reversesV = false;
  gp_Vec2d shift;  ///< after reversing

  /// A new curve with the parameters of the old one; exact.
  [[nodiscard]] Handle(Geom2d_Curve) operator()(const Handle(Geom2d_Curve) & curve) const;
};

/// From the surface of one face to that of another for which haveOneSurface holds. Empty for
/// surfaces other than cylinders, cones, spheres and tori, and for spheres whose axes differ.
std::optional<ParameterMap> parameterMap(const TopoDS_Face& from, const TopoDS_Face& to);

/// Whether the faces lie on one surface for which there is such a map.
bool haveOneTurnedSurface(const TopoDS_Face& a, const TopoDS_Face& b);

}  // namespace od_occt
