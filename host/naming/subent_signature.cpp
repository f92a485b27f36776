// What a face, edge or vertex looks like and where it lies: how it is known without a history.
//
// The idea: a subentity differs from others by its surface or curve (kind, direction, radii, where
// it lies in space) and by its part of that (measure and middle). The two halves are compared
// apart: liesOnSame() asks for the carrier alone, so that a face that was cut still lies on its
// plane; isIdentical() asks for both.
//
// Every comparison is symmetric within the tolerances but not transitive. Nothing is therefore
// grouped by it: pairs are compared, and shapeHash() only sorts out what cannot be alike.
//
// A carrier is compared at the places of the two subentities, not at the origin. Directions may
// differ by their tolerance, so what lies `apart` may differ in height by tolerance times apart.
#include "host/naming/subent_signature.h"

#include <algorithm>
#include <cmath>

#include "host/naming/signature_hash.h"

namespace vdm_host {

namespace {

bool near(double a, double b, double tolerance) { return std::abs(a - b) <= tolerance; }

OdGePoint3d footOn(const OdGePoint3d& origin, const OdGeVector3d& axis, const OdGePoint3d& point) {
  return origin + axis * axis.dotProduct(point - origin);
}

double distanceFromLine(const OdGePoint3d& origin, const OdGeVector3d& axis,
                        const OdGePoint3d& point) {
  return footOn(origin, axis, point).distanceTo(point);
}

bool isParallel(const OdGeVector3d& a, const OdGeVector3d& b, const MatchTolerance& tolerance) {
  return a.crossProduct(b).length() <= tolerance.direction;
}

bool onSameSurface(const SubentSignature& a, const SubentSignature& b,
                   const MatchTolerance& tolerance) {
  const double apart = a.place.distanceTo(b.place);
  // Directions that differ by their tolerance part by this much at that distance.
  const double length = tolerance.length + tolerance.direction * apart;
  if (!near(a.radius, b.radius, length) || !near(a.minorRadius, b.minorRadius, length)) {
    return false;
  }
  switch (static_cast<OdModelerSurfaceKind>(a.kind)) {
    case OdModelerSurfaceKind::kPlane:
      return isParallel(a.direction, b.direction, tolerance) &&
             a.direction.dotProduct(b.direction) > 0.0 &&
             near(a.direction.dotProduct(b.anchor - a.anchor), 0.0, length);
    case OdModelerSurfaceKind::kCylinder:
      return isParallel(a.direction, b.direction, tolerance) &&
             distanceFromLine(a.anchor, a.direction, b.anchor) <= length;
    case OdModelerSurfaceKind::kCone:
      return isParallel(a.direction, b.direction, tolerance) &&
             near(a.halfAngle, b.halfAngle, tolerance.direction) &&
             a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerSurfaceKind::kSphere:
      return a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerSurfaceKind::kTorus:
      return isParallel(a.direction, b.direction, tolerance) &&
             a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerSurfaceKind::kOther:
      break;
  }
  return apart <= tolerance.ofMeasure(2.0 * a.reach());
}

bool onSameCurve(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  const double apart = a.place.distanceTo(b.place);
  const double length = tolerance.length + tolerance.direction * apart;
  switch (static_cast<OdModelerCurveKind>(a.kind)) {
    case OdModelerCurveKind::kLine:
      return isParallel(a.direction, b.direction, tolerance) &&
             distanceFromLine(a.anchor, a.direction, b.anchor) <= length;
    case OdModelerCurveKind::kCircle:
    case OdModelerCurveKind::kEllipse:
      return isParallel(a.direction, b.direction, tolerance) && near(a.radius, b.radius, length) &&
             near(a.minorRadius, b.minorRadius, length) && a.anchor.distanceTo(b.anchor) <= length;
    case OdModelerCurveKind::kOther:
      break;
  }
  return apart <= tolerance.ofMeasure(2.0 * a.reach());
}

bool sameMeasure(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  if (a.type == OdModelerSubentType::kFace) {
    const double side = std::sqrt(std::max(a.size, b.size));
    return near(a.size, b.size, side * tolerance.ofMeasure(side));
  }
  return near(a.size, b.size, tolerance.ofMeasure(std::max(a.size, b.size)));
}

bool sameSort(const SubentSignature& a, const SubentSignature& b) {
  return a.type == b.type && a.kind == b.kind && a.inward == b.inward && a.closed == b.closed;
}

}  // namespace

bool SubentSignature::hasSign() const {
  return type == OdModelerSubentType::kFace &&
         kind == static_cast<OdUInt8>(OdModelerSurfaceKind::kPlane);
}

double SubentSignature::reach() const {
  if (type == OdModelerSubentType::kVertex) return 0.0;
  if (minorRadius > 0.0) return minorRadius;
  if (radius > 0.0) return radius;
  return type == OdModelerSubentType::kFace ? std::sqrt(size) / 2.0 : size / 2.0;
}

SubentSignature SubentSignature::movedBy(const OdGeMatrix3d& motion) const {
  SubentSignature s = *this;
  const double scale = motion.scale();
  s.place = motion * place;
  s.anchor = motion * anchor;
  s.direction = motion * direction;
  if (const double length = s.direction.length(); length > 0.0) s.direction /= length;
  s.radius *= scale;
  s.minorRadius *= scale;
  s.size *= type == OdModelerSubentType::kFace ? scale * scale : scale;
  return s;
}

OdUInt32 SubentSignature::shapeHash() const {
  // Four digits: the hash is to survive what integration and rebuilding do to the last ones.
  const auto rounded = [](double value) {
    if (value <= 0.0) return OdUInt32{0};
    const double digits = std::pow(10.0, 3.0 - std::floor(std::log10(value)));
    return static_cast<OdUInt32>(static_cast<OdInt64>(std::round(value * digits)) +
                                 OdInt64{100000} * static_cast<OdInt64>(std::log10(digits) + 64.0));
  };
  OdUInt32 hash = mixBits(static_cast<OdUInt32>(type) * 64 + kind * 4U + (inward ? 2U : 0U) +
                          (closed ? 1U : 0U));
  for (const double value : {size, radius, minorRadius, halfAngle}) {
    hash = mixBits(hash * 31 + rounded(value));
  }
  return hash == 0 ? 1 : hash;
}

bool liesOnSame(const SubentSignature& a, const SubentSignature& b,
                const MatchTolerance& tolerance) {
  if (a.type != b.type || a.kind != b.kind || a.inward != b.inward) return false;
  switch (a.type) {
    case OdModelerSubentType::kFace:
      return onSameSurface(a, b, tolerance);
    case OdModelerSubentType::kEdge:
      return onSameCurve(a, b, tolerance);
    default:
      return a.place.distanceTo(b.place) <= tolerance.length;
  }
}

bool isIdentical(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  return sameSort(a, b) && liesOnSame(a, b, tolerance) && sameMeasure(a, b, tolerance) &&
         a.place.distanceTo(b.place) <= tolerance.ofMeasure(2.0 * std::max(a.reach(), b.reach()));
}

bool isCongruent(const SubentSignature& a, const SubentSignature& b,
                 const MatchTolerance& tolerance) {
  return sameSort(a, b) && sameMeasure(a, b, tolerance) &&
         near(a.radius, b.radius, tolerance.length) &&
         near(a.minorRadius, b.minorRadius, tolerance.length) &&
         near(a.halfAngle, b.halfAngle, tolerance.direction);
}

}  // namespace vdm_host
