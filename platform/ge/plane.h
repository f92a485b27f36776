// An unbounded plane with a parametric frame.
#pragma once

#include "platform/ge/point3d.h"

/// A plane through an origin. The u and v axes span it and need not be perpendicular or of unit
/// length; the normal is the unit vector along u x v. The default is the world XY plane.
class OdGePlane {
 public:
  OdGePlane() = default;
  /// The axes are chosen by the arbitrary axis rule. Raises OdError eDegenerateGeometry when
  /// `normal` is a zero vector.
  OdGePlane(const OdGePoint3d& origin, const OdGeVector3d& normal);
  /// Raises OdError eDegenerateGeometry when the axes are parallel.
  OdGePlane(const OdGePoint3d& origin, const OdGeVector3d& uAxis, const OdGeVector3d& vAxis);

  static const OdGePlane kXYPlane;
  static const OdGePlane kYZPlane;
  static const OdGePlane kZXPlane;

  OdGePlane& set(const OdGePoint3d& origin, const OdGeVector3d& normal);
  OdGePlane& set(const OdGePoint3d& origin, const OdGeVector3d& uAxis, const OdGeVector3d& vAxis);

  [[nodiscard]] const OdGePoint3d& origin() const { return m_origin; }
  [[nodiscard]] const OdGeVector3d& normal() const { return m_normal; }
  [[nodiscard]] const OdGeVector3d& uAxis() const { return m_uAxis; }
  [[nodiscard]] const OdGeVector3d& vAxis() const { return m_vAxis; }

  /// Distance along the normal, positive on its side, in drawing units.
  [[nodiscard]] double signedDistanceTo(const OdGePoint3d& p) const {
    return (p - m_origin).dotProduct(m_normal);
  }
  [[nodiscard]] double distanceTo(const OdGePoint3d& p) const {
    return std::abs(signedDistanceTo(p));
  }
  [[nodiscard]] bool isOn(const OdGePoint3d& p, const OdGeTol& tol = OdGeTol::kDefault) const {
    return distanceTo(p) <= tol.equalPoint();
  }

 private:
  struct Axes {
    OdGeVector3d u, v, n;
  };
  constexpr explicit OdGePlane(const Axes& axes)
      : m_uAxis(axes.u), m_vAxis(axes.v), m_normal(axes.n) {}

  OdGePoint3d m_origin;
  OdGeVector3d m_uAxis = OdGeVector3d::kXAxis;
  OdGeVector3d m_vAxis = OdGeVector3d::kYAxis;
  OdGeVector3d m_normal = OdGeVector3d::kZAxis;
};

inline constexpr OdGePlane OdGePlane::kXYPlane{
    OdGePlane::Axes{OdGeVector3d::kXAxis, OdGeVector3d::kYAxis, OdGeVector3d::kZAxis}};
inline constexpr OdGePlane OdGePlane::kYZPlane{
    OdGePlane::Axes{OdGeVector3d::kYAxis, OdGeVector3d::kZAxis, OdGeVector3d::kXAxis}};
inline constexpr OdGePlane OdGePlane::kZXPlane{
    OdGePlane::Axes{OdGeVector3d::kZAxis, OdGeVector3d::kXAxis, OdGeVector3d::kYAxis}};
