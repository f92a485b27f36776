// Whether faces lie on one surface, and the map from the parameters of one to those of the other.
#include "platform/modeler_occt/occt_same_surface.h"

#include <BRepAdaptor_Surface.hxx>
#include <Precision.hxx>
#include <cmath>
#include <gp.hxx>
#include <gp_Trsf2d.hxx>

namespace od_occt {
namespace {

// The modeller's own measures of what is one point and one direction.
const double kLinear = Precision::Confusion();
const double kAngular = Precision::Angular();

bool isSame(double a, double b) { return std::abs(a - b) <= kLinear; }

bool isSamePlane(const gp_Pln& a, const gp_Pln& b) {
  return a.Axis().IsParallel(b.Axis(), kAngular) && a.Distance(b.Location()) <= kLinear;
}

// The senses may be opposite.
bool isCoaxial(const gp_Ax1& a, const gp_Ax1& b) {
  return a.IsCoaxial(b, kAngular, kLinear) || a.Reversed().IsCoaxial(b, kAngular, kLinear);
}

// The position of a surface of revolution.
std::optional<gp_Ax3> positionOf(const BRepAdaptor_Surface& surface) {
  switch (surface.GetType()) {
    case GeomAbs_Cylinder:
      return surface.Cylinder().Position();
    case GeomAbs_Cone:
      return surface.Cone().Position();
    case GeomAbs_Sphere:
      return surface.Sphere().Position();
    case GeomAbs_Torus:
      return surface.Torus().Position();
    default:
      return std::nullopt;
  }
}

}  // namespace

bool haveOneSurface(const TopoDS_Face& a, const TopoDS_Face& b) {
  const BRepAdaptor_Surface s(a, Standard_False);
  const BRepAdaptor_Surface t(b, Standard_False);
  if (s.GetType() != t.GetType()) return false;
  switch (s.GetType()) {
    case GeomAbs_Plane:
      return isSamePlane(s.Plane(), t.Plane());
    case GeomAbs_Cylinder:
      return isSame(s.Cylinder().Radius(), t.Cylinder().Radius()) &&
             isCoaxial(s.Cylinder().Axis(), t.Cylinder().Axis());
    case GeomAbs_Cone:
      // With opposite axes they would be the two halves of a double cone.
      return std::abs(s.Cone().SemiAngle() - t.Cone().SemiAngle()) <= kAngular &&
             s.Cone().Apex().IsEqual(t.Cone().Apex(), kLinear) &&
             s.Cone().Axis().IsCoaxial(t.Cone().Axis(), kAngular, kLinear);
    case GeomAbs_Sphere:
      return isSame(s.Sphere().Radius(), t.Sphere().Radius()) &&
             s.Sphere().Location().IsEqual(t.Sphere().Location(), kLinear);
    case GeomAbs_Torus:
      return isSame(s.Torus().MajorRadius(), t.Torus().MajorRadius()) &&
             isSame(s.Torus().MinorRadius(), t.Torus().MinorRadius()) &&
             s.Torus().Location().IsEqual(t.Torus().Location(), kLinear) &&
             isCoaxial(s.Torus().Axis(), t.Torus().Axis());
    default:
      return true;
  }
}

Handle(Geom2d_Curve) ParameterMap::operator()(const Handle(Geom2d_Curve) & curve) const {
  gp_Trsf2d mapping;
  if (reversesU && reversesV) {
    mapping.SetMirror(gp::Origin2d());
  } else if (reversesU) {
    mapping.SetMirror(gp::OY2d());
  } else if (reversesV) {
    mapping.SetMirror(gp::OX2d());
  }
  mapping.SetTranslationPart(shift);
  return Handle(Geom2d_Curve)::DownCast(curve->Transformed(mapping));
}

// Both surfaces have one axis, up to its sense. u is the angle about it: the starts of the angles
// differ by a turn, and opposite senses reverse it. v is a length along the axis, or on a sphere or
// torus an angle from the middle plane: opposite senses reverse it, and the origins of a cylinder
// or cone differ by a shift. A left-handed position reverses u once more.
std::optional<ParameterMap> parameterMap(const TopoDS_Face& from, const TopoDS_Face& to) {
  const BRepAdaptor_Surface s(from, Standard_False);
  const BRepAdaptor_Surface t(to, Standard_False);
  const std::optional<gp_Ax3> a = positionOf(s);
  const std::optional<gp_Ax3> b = positionOf(t);
  if (!a || !b || !a->Axis().IsParallel(b->Axis(), kAngular)) return std::nullopt;
  ParameterMap map;
  map.reversesU = a->Direct() != b->Direct();
  map.reversesV = a->Direction().Dot(b->Direction()) < 0.0;
  if (map.reversesV) map.reversesU = !map.reversesU;
  map.shift.SetX(
      std::atan2(a->XDirection().Dot(b->YDirection()), a->XDirection().Dot(b->XDirection())));
  const double along = gp_Vec(b->Location(), a->Location()).Dot(gp_Vec(b->Direction()));
  if (s.GetType() == GeomAbs_Cylinder) map.shift.SetY(along);
  if (s.GetType() == GeomAbs_Cone) {
    // Both angles are the same: with opposite axes they are the two halves of a double cone.
    if (map.reversesV) return std::nullopt;
    map.shift.SetY(along / std::cos(t.Cone().SemiAngle()));
  }
  return map;
}

bool haveOneTurnedSurface(const TopoDS_Face& a, const TopoDS_Face& b) {
  return haveOneSurface(a, b) && parameterMap(a, b);
}

}  // namespace od_occt
