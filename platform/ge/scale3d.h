// Scale factors along the three axes.
#pragma once

#include <cmath>

#include "platform/ge/tol.h"

/// A plain value of three factors in the memory order sx, sy, sz. `==` is exact. Default
/// construction gives the identity.
class OdGeScale3d {
 public:
  double sx = 1.0;
  double sy = 1.0;
  double sz = 1.0;

  constexpr OdGeScale3d() = default;
  constexpr explicit OdGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
  constexpr OdGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

  static const OdGeScale3d kIdentity;

  constexpr OdGeScale3d& set(double x, double y, double z) {
    sx = x;
    sy = y;
    sz = z;
    return *this;
  }
  /// False when a factor is zero, so that nothing can be scaled back.
  [[nodiscard]] constexpr bool isInvertible() const { return sx != 0.0 && sy != 0.0 && sz != 0.0; }
  [[nodiscard]] bool isEqualTo(const OdGeScale3d& s, const OdGeTol& tol = OdGeTol::kDefault) const {
    return std::hypot(sx - s.sx, sy - s.sy, sz - s.sz) <= tol.equalVector();
  }
  friend constexpr OdGeScale3d operator*(const OdGeScale3d& a, const OdGeScale3d& b) {
    return {a.sx * b.sx, a.sy * b.sy, a.sz * b.sz};
  }
  friend constexpr bool operator==(const OdGeScale3d&, const OdGeScale3d&) = default;
};

inline constexpr OdGeScale3d OdGeScale3d::kIdentity{1.0, 1.0, 1.0};

static_assert(sizeof(OdGeScale3d) == 3 * sizeof(double));
