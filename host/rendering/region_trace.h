// Outlines of the regions of a raster.
#pragma once

#include <cstdint>
#include <vector>

#include "host/rendering/raster.h"

namespace rendering {

struct OutlinePoint {
  double x = 0.0;
  double y = 0.0;
};

/// Samples of one part and colour that hang together. Each loop is closed, without a repeated
/// first point; holes are loops, too, turning the other way.
struct Region {
  RenderColor color;
  std::vector<std::vector<OutlinePoint>> loops;
};

/// What a raster shows, as outlines in samples. Corners where three regions meet are kept; between
/// them an outline is straightened by at most `tolerance` samples, for both its regions alike, so
/// that neighbours neither gap nor overlap.
struct TracedPicture {
  std::vector<Region> regions;
  std::vector<std::vector<OutlinePoint>> outlines;  ///< open lines where Raster::isOutline says so
};

[[nodiscard]] TracedPicture traceRegions(const Raster& raster, double outlineGap, double tolerance);

}  // namespace rendering
