// One line of text as entities draw it.
#pragma once

#include "platform/entities/text_codes.h"
#include "platform/ge/point3d.h"

class OdGiWorldDraw;

/// Where a line of text is and how its characters look. Lengths are drawing units.
struct OdDbTextLine {
  OdGePoint3d position;  ///< where the base line begins
  OdGeVector3d xAxis;    ///< unit vector along the base line
  OdGeVector3d yAxis;    ///< unit vector up from it
  double height = 1.0;   ///< of capitals
  double widthFactor = 1.0;
  double oblique = 0.0;  ///< slant to the right, radians
  bool isBackward = false;
  bool isUpsideDown = false;

  /// Draws it with the lines under and over it. Texts without strokes draw nothing.
  void draw(OdGiWorldDraw* context, const OdDbPlainText& text) const;
};

/// Width of a text from its first to its last character.
[[nodiscard]] double oddbTextWidth(const OdString& plain, double height, double widthFactor);
