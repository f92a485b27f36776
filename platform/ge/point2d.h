// A point in a plane.
#pragma once

#include "platform/ge/vector2d.h"

/// A plain value of two doubles in the memory order x, y. `==` is exact; use `isEqualTo` for a
/// comparison within a tolerance.
class OdGePoint2d {
 public:
  double x = 0.0;
  double y = 0.0;

  constexpr OdGePoint2d() = default;
  constexpr OdGePoint2d(double px, double py) : x(px), y(py) {}

  static const OdGePoint2d kOrigin;

  constexpr OdGePoint2d& set(double px, double py) {
    x = px;
    y = py;
    return *this;
  }
  [[nodiscard]] constexpr OdGeVector2d asVector() const { return {x, y}; }
  [[nodiscard]] double distanceTo(const OdGePoint2d& p) const {
    return std::hypot(x - p.x, y - p.y);
  }
  [[nodiscard]] bool isEqualTo(const OdGePoint2d& p, const OdGeTol& tol = OdGeTol::kDefault) const {
    return distanceTo(p) <= tol.equalPoint();
  }

  constexpr OdGePoint2d& operator+=(const OdGeVector2d& v) { return set(x + v.x, y + v.y); }
  constexpr OdGePoint2d& operator-=(const OdGeVector2d& v) { return set(x - v.x, y - v.y); }
  friend constexpr OdGePoint2d operator+(OdGePoint2d p, const OdGeVector2d& v) { return p += v; }
  friend constexpr OdGePoint2d operator-(OdGePoint2d p, const OdGeVector2d& v) { return p -= v; }
  friend constexpr OdGeVector2d operator-(const OdGePoint2d& a, const OdGePoint2d& b) {
    return {a.x - b.x, a.y - b.y};
  }
  friend constexpr bool operator==(const OdGePoint2d&, const OdGePoint2d&) = default;
};

inline constexpr OdGePoint2d OdGePoint2d::kOrigin{0.0, 0.0};

static_assert(sizeof(OdGePoint2d) == 2 * sizeof(double));
