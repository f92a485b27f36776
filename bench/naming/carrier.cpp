// The surfaces that a construction puts into a part, by name: what a face of the part truly is.
#include "bench/naming/carrier.h"

#include <cmath>

namespace naming_bench {
namespace {

// Of unit vectors: 1e-9 off parallel is below the confusion over any length used here.
constexpr double kParallel = 1e-9;

bool parallel(const OdGeVector3d& a, const OdGeVector3d& b) {
  return std::abs(a.dotProduct(b)) > 1.0 - kParallel;
}

double distanceToAxis(const OdGePoint3d& point, const OdGePoint3d& origin,
                      const OdGeVector3d& axis) {
  return axis.crossProduct(point - origin).length();
}

bool near(double a, double b) { return std::abs(a - b) < kSameSurface; }

bool sameSurface(const Carrier& c, OdModelerSurfaceKind kind, const OdGePoint3d& origin,
                 const OdGeVector3d& axis) {
  if (c.kind != kind) return false;
  switch (kind) {
    case OdModelerSurfaceKind::kPlane:
      return c.axis.dotProduct(axis) > 1.0 - kParallel &&
             near((origin - c.origin).dotProduct(c.axis), 0.0);
    case OdModelerSurfaceKind::kCylinder:
      return parallel(axis, c.axis) && distanceToAxis(origin, c.origin, c.axis) < kSameSurface;
    case OdModelerSurfaceKind::kTorus:
      return parallel(axis, c.axis) && origin.distanceTo(c.origin) < kSameSurface;
    default:
      return false;
  }
}

bool holds(const Carrier& c, const OdGePoint3d& point) {
  const OdGePoint3d p = c.toLocal * point;
  const auto between = [](double low, double value, double high) {
    return low - kSameSurface <= value && value <= high + kSameSurface;
  };
  return between(c.low.x, p.x, c.high.x) && between(c.low.y, p.y, c.high.y) &&
         between(c.low.z, p.z, c.high.z);
}

}  // namespace

void Carrier::moveBy(const OdGeMatrix3d& motion) {
  origin = motion * origin;
  axis = motion * axis;
  toLocal = toLocal * motion.inverse();
}

bool liesOn(const OdModelerFace& face, const Carrier& carrier) {
  const bool plane = face.kind == OdModelerSurfaceKind::kPlane;
  if (!sameSurface(carrier, face.kind, plane ? face.pointOnFace : face.origin,
                   plane ? face.normal : face.axis)) {
    return false;
  }
  if (!plane && (face.inward != carrier.inward || !near(face.radius, carrier.radius) ||
                 !near(face.minorRadius, carrier.minorRadius))) {
    return false;
  }
  return holds(carrier, face.pointOnFace);
}

int carrierOf(const OdModelerFace& face, const std::vector<Carrier>& carriers) {
  for (std::size_t i = 0; i < carriers.size(); ++i) {
    if (liesOn(face, carriers[i])) return static_cast<int>(i);
  }
  return -1;
}

bool sameCarrier(const Carrier& a, const Carrier& b) {
  if (!sameSurface(a, b.kind, b.origin, b.axis) || a.inward != b.inward ||
      !near(a.radius, b.radius) || !near(a.minorRadius, b.minorRadius)) {
    return false;
  }
  const OdGePoint3d middle(b.low.x / 2.0 + b.high.x / 2.0, b.low.y / 2.0 + b.high.y / 2.0,
                           b.low.z / 2.0 + b.high.z / 2.0);
  return holds(a, b.toLocal.inverse() * middle);
}

}  // namespace naming_bench
