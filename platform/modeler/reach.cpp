#include "platform/modeler/reach.h"

#include <cmath>

#include "platform/modeler/body.h"

namespace {

// A comparison with a value that is no number is false.
bool isWithin(double coordinate) { return std::abs(coordinate) <= kOdModelerReach; }

double largestOf(const OdGePoint3d& p) {
  const double xy = isWithin(p.x) ? p.y : p.x;
  return isWithin(xy) ? p.z : xy;
}

}  // namespace

bool odIsWithinReach(const OdGePoint3d& point) {
  return isWithin(point.x) && isWithin(point.y) && isWithin(point.z);
}

OdStatus odCheckReach(const OdModelerBody& body, const OdGeMatrix3d& matrix) {
  for (OdUInt32 i = 1; i <= body.numVertices(); ++i) {
    const OdGePoint3d point = matrix * body.vertex(i).point;
    if (odIsWithinReach(point)) continue;
    OdStatus status{eInvalidInput, {}};
    status.text.format(L"the body would reach to coordinate %g, at most %g is possible",
                       largestOf(point), kOdModelerReach);
    return status;
  }
  return {};
}
