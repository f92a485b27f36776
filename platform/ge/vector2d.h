// A vector in a plane.
#pragma once

#include <cmath>

#include "platform/ge/tol.h"

/// A plain value of two doubles in the memory order x, y. `==` is exact; use `isEqualTo` for a
/// comparison within a tolerance.
class OdGeVector2d {
 public:
  double x = 0.0;
  double y = 0.0;

  constexpr OdGeVector2d() = default;
  constexpr OdGeVector2d(double vx, double vy) : x(vx), y(vy) {}

  static const OdGeVector2d kIdentity;  ///< the zero vector, neutral in addition
  static const OdGeVector2d kXAxis;
  static const OdGeVector2d kYAxis;

  constexpr OdGeVector2d& set(double vx, double vy) {
    x = vx;
    y = vy;
    return *this;
  }
  [[nodiscard]] constexpr double dotProduct(const OdGeVector2d& v) const {
    return x * v.x + y * v.y;
  }
  /// The z component of the cross product in space.
  [[nodiscard]] constexpr double crossProduct(const OdGeVector2d& v) const {
    return x * v.y - y * v.x;
  }
  [[nodiscard]] double length() const { return std::hypot(x, y); }
  [[nodiscard]] constexpr double lengthSqrd() const { return dotProduct(*this); }
  /// The vector turned by 90 degrees counter-clockwise.
  [[nodiscard]] constexpr OdGeVector2d perpVector() const { return {-y, x}; }
  [[nodiscard]] bool isEqualTo(const OdGeVector2d& v,
                               const OdGeTol& tol = OdGeTol::kDefault) const {
    return std::hypot(x - v.x, y - v.y) <= tol.equalVector();
  }

  constexpr OdGeVector2d& operator+=(const OdGeVector2d& v) { return set(x + v.x, y + v.y); }
  constexpr OdGeVector2d& operator-=(const OdGeVector2d& v) { return set(x - v.x, y - v.y); }
  constexpr OdGeVector2d& operator*=(double s) { return set(x * s, y * s); }
  friend constexpr OdGeVector2d operator+(OdGeVector2d a, const OdGeVector2d& b) { return a += b; }
  friend constexpr OdGeVector2d operator-(OdGeVector2d a, const OdGeVector2d& b) { return a -= b; }
  friend constexpr OdGeVector2d operator*(OdGeVector2d v, double s) { return v *= s; }
  friend constexpr OdGeVector2d operator*(double s, OdGeVector2d v) { return v *= s; }
  constexpr OdGeVector2d operator-() const { return {-x, -y}; }
  friend constexpr bool operator==(const OdGeVector2d&, const OdGeVector2d&) = default;
};

inline constexpr OdGeVector2d OdGeVector2d::kIdentity{0.0, 0.0};
inline constexpr OdGeVector2d OdGeVector2d::kXAxis{1.0, 0.0};
inline constexpr OdGeVector2d OdGeVector2d::kYAxis{0.0, 1.0};

static_assert(sizeof(OdGeVector2d) == 2 * sizeof(double));
