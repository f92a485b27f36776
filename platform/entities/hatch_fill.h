// Areas between loops: filled, or covered with parallel lines.
#pragma once

#include <array>
#include <vector>

#include "platform/base/types.h"
#include "platform/ge/point2d.h"

/// A family of parallel lines of a hatch pattern, in the plane of the hatch.
struct OdDbHatchLines {
  double angle = 0.0;          ///< of the lines, radians
  OdGePoint2d base;            ///< a point of the first line, where its dashes begin
  OdGeVector2d step;           ///< from a line to the next, in the axes of the plane
  std::vector<double> dashes;  ///< as those of a line type; none for whole lines

  friend bool operator==(const OdDbHatchLines&, const OdDbHatchLines&) = default;
};

using OdDbHatchOutline = std::vector<OdGePoint2d>;  ///< closed by its last point's way to the first

/// A segment of a hatch line within the area.
struct OdDbHatchSegment {
  OdGePoint2d from;
  OdGePoint2d to;
};

/// A point is in the area when a ray from it crosses the outlines an odd number of times.

/// The pieces of the lines within the area; false, and nothing is added, when there would be more
/// than `most` lines or dashes.
bool oddbHatchLines(const std::vector<OdDbHatchOutline>& outlines, const OdDbHatchLines& lines,
                    std::size_t most, std::vector<OdDbHatchSegment>& segments);

/// Triangles that cover the area without overlap.
struct OdDbHatchTriangles {
  std::vector<OdGePoint2d> points;
  std::vector<std::array<OdUInt32, 3>> triangles;
};
[[nodiscard]] OdDbHatchTriangles oddbHatchFill(const std::vector<OdDbHatchOutline>& outlines);

/// Number of outlines around the first point of an outline, itself left out.
[[nodiscard]] unsigned oddbHatchDepth(const std::vector<OdDbHatchOutline>& outlines,
                                      std::size_t outline);
