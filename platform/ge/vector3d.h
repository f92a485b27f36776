// A vector in space.
#pragma once

#include <cmath>

#include "platform/ge/tol.h"

/// A plain value of three doubles in the memory order x, y, z. `==` is exact; use `isEqualTo` for a
/// comparison within a tolerance. Default construction gives the zero vector.
class OdGeVector3d {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr OdGeVector3d() = default;
  constexpr OdGeVector3d(double vx, double vy, double vz) : x(vx), y(vy), z(vz) {}

  static const OdGeVector3d kIdentity;  ///< the zero vector, neutral in addition
  static const OdGeVector3d kXAxis;
  static const OdGeVector3d kYAxis;
  static const OdGeVector3d kZAxis;

  constexpr OdGeVector3d& set(double vx, double vy, double vz) {
    x = vx;
    y = vy;
    z = vz;
    return *this;
  }
  /// Component 0, 1 or 2; raises OdError eInvalidIndex outside of that.
  double& operator[](unsigned index);
  double operator[](unsigned index) const;

  [[nodiscard]] constexpr double dotProduct(const OdGeVector3d& v) const {
    return x * v.x + y * v.y + z * v.z;
  }
  [[nodiscard]] constexpr OdGeVector3d crossProduct(const OdGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  [[nodiscard]] constexpr double lengthSqrd() const { return dotProduct(*this); }
  [[nodiscard]] double length() const { return std::hypot(x, y, z); }
  /// Angle to `v` in radians, 0 to pi. The angle to a zero vector is 0.
  [[nodiscard]] double angleTo(const OdGeVector3d& v) const;
  /// Angle from this vector to `v` seen against `axis`, counter-clockwise, 0 up to 2 pi.
  [[nodiscard]] double angleTo(const OdGeVector3d& v, const OdGeVector3d& axis) const;
  /// A vector perpendicular to this one, by the arbitrary axis rule: the world Y axis crossed with
  /// it when it is within 1/64 of the world Z axis, else the world Z axis crossed with it.
  [[nodiscard]] OdGeVector3d perpVector() const;

  /// Scales to length 1. A vector shorter than the tolerance raises OdError eDegenerateGeometry.
  OdGeVector3d& normalize(const OdGeTol& tol = OdGeTol::kDefault);
  [[nodiscard]] OdGeVector3d normal(const OdGeTol& tol = OdGeTol::kDefault) const;
  constexpr OdGeVector3d& negate() { return set(-x, -y, -z); }

  [[nodiscard]] bool isZeroLength(const OdGeTol& tol = OdGeTol::kDefault) const {
    return length() <= tol.equalVector();
  }
  [[nodiscard]] bool isUnitLength(const OdGeTol& tol = OdGeTol::kDefault) const {
    return std::abs(length() - 1.0) <= tol.equalVector();
  }
  /// Within the tolerance after normalising both; false when either is a zero vector.
  [[nodiscard]] bool isParallelTo(const OdGeVector3d& v,
                                  const OdGeTol& tol = OdGeTol::kDefault) const;
  [[nodiscard]] bool isCodirectionalTo(const OdGeVector3d& v,
                                       const OdGeTol& tol = OdGeTol::kDefault) const;
  [[nodiscard]] bool isPerpendicularTo(const OdGeVector3d& v,
                                       const OdGeTol& tol = OdGeTol::kDefault) const;
  [[nodiscard]] bool isEqualTo(const OdGeVector3d& v,
                               const OdGeTol& tol = OdGeTol::kDefault) const {
    return std::hypot(x - v.x, y - v.y, z - v.z) <= tol.equalVector();
  }

  constexpr OdGeVector3d& operator+=(const OdGeVector3d& v) {
    return set(x + v.x, y + v.y, z + v.z);
  }
  constexpr OdGeVector3d& operator-=(const OdGeVector3d& v) {
    return set(x - v.x, y - v.y, z - v.z);
  }
  constexpr OdGeVector3d& operator*=(double s) { return set(x * s, y * s, z * s); }
  constexpr OdGeVector3d& operator/=(double s) { return set(x / s, y / s, z / s); }
  friend constexpr OdGeVector3d operator+(OdGeVector3d a, const OdGeVector3d& b) { return a += b; }
  friend constexpr OdGeVector3d operator-(OdGeVector3d a, const OdGeVector3d& b) { return a -= b; }
  friend constexpr OdGeVector3d operator*(OdGeVector3d v, double s) { return v *= s; }
  friend constexpr OdGeVector3d operator*(double s, OdGeVector3d v) { return v *= s; }
  friend constexpr OdGeVector3d operator/(OdGeVector3d v, double s) { return v /= s; }
  constexpr OdGeVector3d operator-() const { return {-x, -y, -z}; }
  friend constexpr bool operator==(const OdGeVector3d&, const OdGeVector3d&) = default;
};

inline constexpr OdGeVector3d OdGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr OdGeVector3d OdGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr OdGeVector3d OdGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr OdGeVector3d OdGeVector3d::kZAxis{0.0, 0.0, 1.0};

static_assert(sizeof(OdGeVector3d) == 3 * sizeof(double));
