// What dimensions and leaders draw by.
#pragma once

#include "platform/db/color.h"
#include "platform/filer/object_id.h"

class OdDbDatabase;

/// Values of a dimension style with its sizes scaled, in drawing units. Null is the drawing's style
/// "Standard"; outside of drawings, and for a style that cannot be opened, a style as it is made.
struct OdDbDimStyleValues {
  OdDbDimStyleValues(const OdDbObjectId& style, const OdDbDatabase* drawing);

  double arrow = 0.0;            ///< length of arrowheads
  double extensionGap = 0.0;     ///< from a point to its extension line
  double extensionBeyond = 0.0;  ///< beyond the dimension line
  double textHeight = 0.0;
  double textGap = 0.0;
  double toleranceHeight = 0.0;  ///< by the height of the text
  double centerMark = 0.0;       ///< half of its length
  double lengthFactor = 1.0;
  double rounding = 0.0;
  double toleranceUp = 0.0;
  double toleranceDown = 0.0;
  int decimals = 2;
  int angleDecimals = 0;
  int toleranceDecimals = 2;
  wchar_t separator = L',';
  bool cutsTrailingZeros = true;
  bool cutsLeadingZero = false;
  bool isTextAbove = true;
  bool isTextLevel = false;  ///< and does not follow the dimension line
  bool hasTolerances = false;
  bool hasLine[2] = {true, true};  ///< halves of the dimension line
  bool hasExtension[2] = {true, true};
  OdCmColor lineColor;
  OdCmColor extensionColor;
  OdCmColor textColor;
  OdString post;
  OdDbObjectId textStyle;
};

/// A number as dimensions show it: rounded to `decimals`, with the style's separator and zeros.
[[nodiscard]] OdString oddbDimNumber(double value, int decimals, const OdDbDimStyleValues& style);
