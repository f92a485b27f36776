// Conversion between units that are given as texts.
#pragma once

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/expressions/diagnostic.h"

namespace OdExpression {

/// The factor from values in the unit `from` to values in the unit `to`, such as 0.001 from
/// "kg/m^3" to "g/cm^3". Returns false, sets `diagnostic` and leaves `factor` as it was when a text
/// is no unit or when they measure different things; the column is then one of `from` or, where
/// `from` is a unit, of `to`.
[[nodiscard]] OD_API bool unitFactor(const OdString& from, const OdString& to, double& factor,
                                     Diagnostic& diagnostic);

}  // namespace OdExpression
