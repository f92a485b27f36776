// Values of parameters with their units, as users read and type them.
#pragma once

#include "platform/base/string.h"
#include "platform/db/db_enums.h"
#include "platform/expressions/dimension.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// A value in the unit in which it is shown. `number` and `unit` together are an expression that
/// gives the value again, up to rounding.
struct ShownValue {
  double number = 0.0;
  OdString unit;  ///< "mm", "mm^2", "deg", "kg s^-2"; empty for plain numbers and ratios
};

/// Lengths in the unit of the block, angles in degrees, all else in base units. `value` is in base
/// units: drawing units, radians, kilograms, seconds, ...
[[nodiscard]] ShownValue shownValue(double value, const OdExpression::Dimension& dimension,
                                    OdDb::UnitsValue lengthUnit);

/// The insertion units of a block; those of the drawing for model space.
[[nodiscard]] OdDb::UnitsValue unitsOfBlock(const OdDbObjectId& block);

/// The value of a constant expression in base units ("5", "1/2 in", "30 deg"), and what it
/// measures. On failure `error` says what is wrong and where.
[[nodiscard]] bool readConstant(const OdString& text, OdDb::UnitsValue lengthUnit, double& value,
                                OdExpression::Dimension& dimension, OdString& error);

}  // namespace vdm_host
