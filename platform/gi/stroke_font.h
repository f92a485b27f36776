// A font of strokes, for texts in drawings and pictures.
#pragma once

#include <vector>

#include "platform/base/string.h"
#include "platform/ge/point2d.h"

/// Open polylines of one line of text, from its base line at 0, 0 to the right. Capitals are 1
/// high; descenders reach down to -1/3.
struct OdGiTextStrokes {
  std::vector<std::vector<OdGePoint2d>> strokes;
  double width = 0.0;
};

/// Width between two characters, in heights of a capital.
constexpr double kOdGiCharacterGap = 1.0 / 3;

/// Lays out one line of text. Printable ASCII and some signs of engineering have glyphs, all else
/// is a box.
[[nodiscard]] OdGiTextStrokes odgiLayOutText(const OdString& text);
/// Width of that line, in heights of a capital, without laying it out.
[[nodiscard]] double odgiTextWidth(const OdString& text);
