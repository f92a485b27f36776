// Units of length with their exact definitions.
#pragma once

#include <span>

#include "platform/base/export.h"
#include "platform/base/types.h"

/// One unit. The texts are UTF-8; where there is none they are "".
struct OdLengthUnit {
  double numerator;  ///< one unit is numerator / denominator metres, both whole numbers
  double denominator;
  const char* name;      ///< English plural, such as "millimeters"
  const char* singular;  ///< such as "millimeter"
  const char* symbol;    ///< common symbol, such as "mil"
  const char* unitText;  ///< as measurements show it, such as "mils"
};

/// All units; the index is the number that drawings store. Row 0 is "undefined", with numerator 0.
[[nodiscard]] OD_API std::span<const OdLengthUnit> odLengthUnits();
/// The row of a number, or null for 0 and for numbers that are no unit.
[[nodiscard]] OD_API const OdLengthUnit* odLengthUnit(OdInt32 number);
