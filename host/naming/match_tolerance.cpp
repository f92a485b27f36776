// Lengths and angles within which geometry counts as the same.
#include "host/naming/match_tolerance.h"

#include <algorithm>

namespace vdm_host {

namespace {

/// Ten times the modeller's confusion distance of 1e-7 drawing units: what different operations
/// build in one place differs by a few confusion distances.
constexpr double kSamePlace = 1e-6;
/// Places far from the origin lose digits: doubles have 2^-52, a chain of some hundred operations
/// loses a thousand of these steps at most.
constexpr double kRelativeNoise = 1e-12;
/// Areas and centroids are integrated; the modeller's quadrature is good to about six digits on
/// curved faces, and differs with the place of the seam.
constexpr double kMeasureAccuracy = 1e-5;

// The tight box costs the modeller milliseconds; that of the corners does for the order of size.
OdGeExtents3d cheapBox(const OdModelerBody& body) {
  constexpr OdUInt32 kEnoughCorners = 4;
  if (body.numVertices() < kEnoughCorners) return body.extents();
  OdGeExtents3d box;
  for (OdUInt32 i = 1; i <= body.numVertices(); ++i) box.addPoint(body.vertex(i).point);
  return box;
}

}  // namespace

double MatchTolerance::lengthAt(double distance) {
  return std::max(kSamePlace, kRelativeNoise * distance);
}

double MatchTolerance::ofMeasure(double measured) const {
  return std::max(length, kMeasureAccuracy * measured);
}

MatchTolerance MatchTolerance::of(const OdModelerBody& body) {
  MatchTolerance tolerance;
  const OdGeExtents3d box = cheapBox(body);
  tolerance.size = 0.0;
  if (!box.isValidExtents()) return tolerance;
  tolerance.size = box.minPoint().distanceTo(box.maxPoint());
  tolerance.length =
      lengthAt(std::max(box.minPoint().asVector().length(), box.maxPoint().asVector().length()));
  return tolerance;
}

MatchTolerance MatchTolerance::of(const OdModelerBody& a, const OdModelerBody& b) {
  MatchTolerance one = of(a);
  const MatchTolerance two = of(b);
  one.length = std::max(one.length, two.length);
  one.size = std::max(one.size, two.size);
  return one;
}

}  // namespace vdm_host
