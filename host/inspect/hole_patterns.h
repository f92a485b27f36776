// Equal holes that lie in a row, in a grid, or on a circle.
#pragma once

#include <span>
#include <vector>

#include "host/inspect/hole_recognition.h"

namespace vdm_host {

enum class HolePatternKind { kRow, kGrid, kCircle };

/// Holes of one kind and size that are placed by a rule. Lengths in drawing units.
struct HolePattern {
  HolePatternKind kind = HolePatternKind::kRow;
  std::vector<std::size_t> holes;  ///< places in the list of holes, rising
  std::size_t count = 0;           ///< in a row of a grid; of all for the others
  std::size_t rows = 1;            ///< of a grid
  double pitch = 0.0;              ///< in a row
  double rowPitch = 0.0;           ///< between the rows of a grid
  double diameter = 0.0;           ///< of a circle
};
/// "row of 5, pitch 20", "grid of 4 x 3, pitch 20 x 15", "6 on a circle of 50".
[[nodiscard]] std::string holePatternText(const HolePattern& pattern);

/// Patterns of three holes and more: equal ones (kind, sizes, axis) whose mouths lie in one plane,
/// all of them together. Four at the corners of a rectangle are a grid. `tolerance` in drawing
/// units.
[[nodiscard]] std::vector<HolePattern> recognizePatterns(std::span<const HoleFacts> holes,
                                                         double tolerance);

}  // namespace vdm_host
