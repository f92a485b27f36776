// The units library: everything beyond lengths of drawings and plain angles.
#pragma once

#include <optional>
#include <string_view>

#include "platform/expressions/unit.h"

namespace OdExpression {

/// By symbol, name or plural, with prefixes: "kg", "kilogram", "min", "kPa". Nothing for other
/// words, for units with a zero point of their own (degrees Celsius), for logarithmic units, and
/// when the library's list of units cannot be read. Safe in several threads at a time.
[[nodiscard]] std::optional<Unit> findInLibrary(std::wstring_view word);

}  // namespace OdExpression
