// Units by their texts.
#pragma once

#include <optional>
#include <string_view>

#include "platform/base/length_units.h"
#include "platform/expressions/dimension.h"

namespace OdExpression {

/// A unit in terms of metres, radians and the other base units: one unit is numerator / denominator
/// of them. Both parts are kept, so that a conversion is rounded once.
struct Unit {
  long double numerator = 1.0L;
  long double denominator = 1.0L;
  Dimension dimension = Dimension::ratio();
};

/// By its symbol or its name; nothing for a word that is no unit. Looks at the drawing units, at
/// the angles and then at the library of units. Case matters, since m and M differ; a symbol or
/// name that has no capitals may also be written in capitals alone. A last digit is a power: m3.
/// Raises UnitsUnreadable.
[[nodiscard]] std::optional<Unit> findUnit(std::wstring_view word);
/// True for a word that is known to be a unit; raises nothing.
[[nodiscard]] bool isUnit(std::wstring_view word);

/// Nothing when a power of the result leaves its range.
[[nodiscard]] std::optional<Unit> product(const Unit& a, const Unit& b);
[[nodiscard]] std::optional<Unit> quotient(const Unit& a, const Unit& b);
/// `power` between -10 and 10.
[[nodiscard]] std::optional<Unit> raised(const Unit& unit, int power);

/// The same unit counted in another unit of length than the metre.
[[nodiscard]] Unit countedIn(const OdLengthUnit& length, const Unit& unit);

}  // namespace OdExpression
