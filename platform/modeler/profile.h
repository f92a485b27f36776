// A flat outline that is swept into a solid.
#pragma once

#include <vector>

#include "platform/ge/plane.h"
#include "platform/ge/point2d.h"

/// A corner of a loop. The bulge bends the side from here to the next corner: 0 is straight, else
/// the tangent of a quarter of the arc's angle, positive for a counter-clockwise arc.
struct OdModelerProfileVertex {
  OdGePoint2d point;
  double bulge = 0.0;
};

/// A closed line; the last corner joins the first. A circle has two corners with bulge 1.
using OdModelerLoop = std::vector<OdModelerProfileVertex>;

/// An area of a plane: inside of the outer loop, outside of the holes. Loops may run either way and
/// must not cross. The coordinates count along the plane's u axis and, perpendicular to it, towards
/// its v axis, in drawing units.
struct OdModelerProfile {
  OdGePlane plane;
  OdModelerLoop outer;
  std::vector<OdModelerLoop> holes;
};
