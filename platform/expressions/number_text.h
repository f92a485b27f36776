// Numbers as text, independent of the locale.
#pragma once

#include "platform/base/export.h"
#include "platform/base/string.h"

namespace OdExpression {

/// The number as %.12g prints it; it compiles to a value within 5e-12 of itself. Not finite numbers
/// give "inf", "-inf" and "nan", which do not compile.
[[nodiscard]] OD_API OdString numberText(double value);

}  // namespace OdExpression
