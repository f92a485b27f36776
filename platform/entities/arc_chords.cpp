// Arcs of circles and ellipses: chords, boxes, bulges.
#include "platform/entities/arc_chords.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kUsualDeviation = 1e-3;  // of the radius
constexpr double kWidestChord = kOdDbFullTurn / 8;
constexpr double kMostChords = 4096;

// Whether an angle lies on the arc, its ends included.
bool isOn(const OdDbArcShape& arc, double parameter) {
  const double begin = arc.sweep >= 0.0 ? arc.start : arc.start + arc.sweep;
  return oddbNormalAngle(parameter - begin) <= std::abs(arc.sweep);
}

}  // namespace

// A chord over the angle u is r (1 - cos(u / 2)) away from its arc.
unsigned oddbChordCount(double radius, double sweep, double deviation) {
  const double allowed = deviation > 0.0 && radius > 0.0 ? deviation / radius : kUsualDeviation;
  const double widest = 2.0 * std::acos(std::max(0.0, 1.0 - allowed));
  const double step = std::clamp(widest, kOdDbFullTurn / kMostChords, kWidestChord);
  return static_cast<unsigned>(
      std::clamp(std::ceil(std::abs(sweep) / step - 1e-9), 1.0, kMostChords));
}

OdGePoint3d OdDbArcShape::at(double parameter) const {
  return center + a * std::cos(parameter) + b * std::sin(parameter);
}

void OdDbArcShape::addChords(double deviation, std::vector<OdGePoint3d>& points,
                             bool skipsFirst) const {
  const unsigned count = oddbChordCount(std::max(a.length(), b.length()), sweep, deviation);
  for (unsigned i = skipsFirst ? 1 : 0; i <= count; ++i)
    points.push_back(at(start + sweep * i / count));
}

// A coordinate a_i cos t + b_i sin t is greatest at atan2(b_i, a_i) and least half a turn on.
void OdDbArcShape::addExtents(OdGeExtents3d& box) const {
  box.addPoint(at(start)).addPoint(at(start + sweep));
  for (unsigned axis = 0; axis < 3; ++axis) {
    const double greatest = std::atan2(b[axis], a[axis]);
    for (const double parameter : {greatest, greatest + kOdDbFullTurn / 2}) {
      if (isOn(*this, parameter)) box.addPoint(at(parameter));
    }
  }
}

// With the chord c and the bulge k the centre is at (1 / k - k) / 4 of c to the left of its middle.
OdDbBulgeArc::OdDbBulgeArc(const OdGePoint2d& from, const OdGePoint2d& to, double bulge) {
  const OdGeVector2d chord = to - from;
  const double away = (1.0 / bulge - bulge) / 4.0;
  center.set((from.x + to.x) / 2 - chord.y * away, (from.y + to.y) / 2 + chord.x * away);
  radius = center.distanceTo(from);
  start = std::atan2(from.y - center.y, from.x - center.x);
  sweep = 4.0 * std::atan(bulge);
}

double oddbNormalAngle(double angle) {
  const double turned = std::fmod(angle, kOdDbFullTurn);
  const double positive = turned < 0.0 ? turned + kOdDbFullTurn : turned;
  return positive >= kOdDbFullTurn ? 0.0 : positive;
}

double oddbSweep(double from, double to) {
  const double sweep = oddbNormalAngle(to - from);
  return sweep == 0.0 ? kOdDbFullTurn : sweep;
}
