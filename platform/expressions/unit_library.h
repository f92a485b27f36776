// The units library: everything beyond lengths of drawings and plain angles.
#pragma once

#include <optional>
#include <string_view>

#include "platform/expressions/unit.h"

namespace OdExpression {

/// Raised when the list of units cannot be read: a word can then not be said to be no unit.
struct UnitsUnreadable {
  const char* file;
};

/// By symbol, name or plural, with prefixes: "kg", "kilogram", "min", "kPa". Nothing for other
/// words, for units with a zero point of their own (degrees Celsius) and for logarithmic units.
/// Raises UnitsUnreadable. Safe in several threads at a time.
[[nodiscard]] std::optional<Unit> findInLibrary(std::wstring_view word);

}  // namespace OdExpression
