// Arcs of circles and ellipses: chords, boxes, bulges.
#pragma once

#include <vector>

#include "platform/ge/extents3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"

constexpr double kOdDbFullTurn = 6.283185307179586;

/// Chords that keep within `deviation` of an arc. A deviation of 0 means a thousandth of the
/// radius. Never a chord over more than an eighth of a turn, never more than 4096 of them.
[[nodiscard]] unsigned oddbChordCount(double radius, double sweep, double deviation);

/// An arc `center + a cos t + b sin t` for t from `start` over `sweep`, both in radians; a negative
/// sweep runs backwards. Perpendicular axes of one length give a circle.
struct OdDbArcShape {
  OdGePoint3d center;
  OdGeVector3d a;
  OdGeVector3d b;
  double start = 0.0;
  double sweep = kOdDbFullTurn;

  [[nodiscard]] OdGePoint3d at(double parameter) const;
  /// Appends the ends of its chords, without its first point when `skipsFirst`.
  void addChords(double deviation, std::vector<OdGePoint3d>& points, bool skipsFirst = false) const;
  /// Grows the box by exactly the arc.
  void addExtents(OdGeExtents3d& box) const;
};

/// The arc from one point to another with a bulge, the tangent of a quarter of its sweep: positive
/// is counter-clockwise, 0 a straight line (which this must not be asked for).
struct OdDbBulgeArc {
  OdGePoint2d center;
  double radius = 0.0;
  double start = 0.0;  ///< angle of the first point, radians
  double sweep = 0.0;  ///< signed, radians

  OdDbBulgeArc(const OdGePoint2d& from, const OdGePoint2d& to, double bulge);
};

/// An angle moved by whole turns into 0 up to a turn.
[[nodiscard]] double oddbNormalAngle(double angle);
/// The counter-clockwise sweep from one angle to another, above 0 up to a whole turn.
[[nodiscard]] double oddbSweep(double from, double to);
