// A font of strokes, for texts in pictures.
#pragma once

#include <string>
#include <vector>

namespace rendering {

struct FontPoint {
  double x = 0.0;
  double y = 0.0;  ///< up from the base line
};

/// Open polylines of one text. Capitals are 1 high; descenders reach down to -1/3.
struct TextStrokes {
  std::vector<std::vector<FontPoint>> strokes;
  double width = 0.0;
};

/// Lays out one line of UTF-8 text. Printable ASCII and some signs of engineering have glyphs, all
/// else is a box.
[[nodiscard]] TextStrokes layOutText(const std::string& text);

}  // namespace rendering
