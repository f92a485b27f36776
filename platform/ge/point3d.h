// A point in space.
#pragma once

#include "platform/ge/vector3d.h"

/// A plain value of three doubles in the memory order x, y, z, in drawing units. `==` is exact; use
/// `isEqualTo` for a comparison within a tolerance.
class OdGePoint3d {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr OdGePoint3d() = default;
  constexpr OdGePoint3d(double px, double py, double pz) : x(px), y(py), z(pz) {}

  static const OdGePoint3d kOrigin;

  constexpr OdGePoint3d& set(double px, double py, double pz) {
    x = px;
    y = py;
    z = pz;
    return *this;
  }
  /// Coordinate 0, 1 or 2; raises OdError eInvalidIndex outside of that.
  double& operator[](unsigned index);
  double operator[](unsigned index) const;

  /// The vector from the origin to the point.
  [[nodiscard]] constexpr OdGeVector3d asVector() const { return {x, y, z}; }
  [[nodiscard]] double distanceTo(const OdGePoint3d& p) const {
    return std::hypot(x - p.x, y - p.y, z - p.z);
  }
  [[nodiscard]] bool isEqualTo(const OdGePoint3d& p, const OdGeTol& tol = OdGeTol::kDefault) const {
    return distanceTo(p) <= tol.equalPoint();
  }

  constexpr OdGePoint3d& operator+=(const OdGeVector3d& v) {
    return set(x + v.x, y + v.y, z + v.z);
  }
  constexpr OdGePoint3d& operator-=(const OdGeVector3d& v) {
    return set(x - v.x, y - v.y, z - v.z);
  }
  friend constexpr OdGePoint3d operator+(OdGePoint3d p, const OdGeVector3d& v) { return p += v; }
  friend constexpr OdGePoint3d operator-(OdGePoint3d p, const OdGeVector3d& v) { return p -= v; }
  friend constexpr OdGeVector3d operator-(const OdGePoint3d& a, const OdGePoint3d& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
  }
  friend constexpr OdGePoint3d operator*(const OdGePoint3d& p, double s) {
    return {p.x * s, p.y * s, p.z * s};
  }
  friend constexpr bool operator==(const OdGePoint3d&, const OdGePoint3d&) = default;
};

inline constexpr OdGePoint3d OdGePoint3d::kOrigin{0.0, 0.0, 0.0};

static_assert(sizeof(OdGePoint3d) == 3 * sizeof(double));
