// Numbers with units.
//
//   literal  = part { part }              parts have units of one dimension, each less than the
//   last part     = number [ unit ] number   = digits with a point or an exponent
//            | whole "/" whole            without spaces, before a unit: 1/2 in
//            | whole whole "/" whole      1 1/2
//   unit     = factor { [ "·" ] factor } { "/" factor }     no spaces at the "/"
//   factor   = ( word | "'" | """ | "°" ) [ "^" whole | "^-" whole | "²" | "³" ]
//
// The rules about spaces make the reading of a text independent of the names that a drawing has:
// `6 mm/s` is a speed and `6 mm / s` divides by the name s. A text in which the first form meets a
// name s as well is refused.
#pragma once

#include "platform/base/length_units.h"
#include "platform/expressions/scanner.h"
#include "platform/expressions/unit.h"

namespace OdExpression {

class NameScope;

/// What the reading of a unit depends on. Both are null when only the form of a text is of
/// interest.
struct UnitContext {
  const OdLengthUnit* length = nullptr;  ///< the base unit of length
  NameScope* scope = nullptr;            ///< names that a unit must not be mistaken for
  bool needsLength = true;               ///< whether a unit of length without `length` is refused
};

struct Literal {
  double value = 0.0;  ///< in base units
  Dimension dimension;
  int column = 1;
};

/// True when a unit begins at the present token.
[[nodiscard]] bool isAtUnit(const Scanner& scanner);
/// Reads the unit at the present token, in base units. Raises a Diagnostic.
[[nodiscard]] Unit readUnit(Scanner& scanner, const UnitContext& context);
/// Reads a text that is a unit from its beginning to its end, in metres. Products may also be
/// written with `*`, spaces are free, and a leading 1 is allowed: "kg * m / s^2", "1/s". Raises a
/// Diagnostic.
[[nodiscard]] Unit readUnitText(Scanner& scanner);
/// Reads the literal at the present token, a number. Raises a Diagnostic.
[[nodiscard]] Literal readLiteral(Scanner& scanner, const UnitContext& context);

}  // namespace OdExpression
