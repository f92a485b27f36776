// Conversion between units.
#include "platform/expressions/unit_factor.h"

#include <cmath>

#include "platform/expressions/literal.h"
#include "platform/expressions/number_text.h"
#include "platform/expressions/unit_library.h"
#include "platform/expressions/wide_text.h"

namespace OdExpression {

namespace {

Unit unitOfText(const OdString& text) {
  const WideText wide(text);
  Scanner scanner(wide.view());
  try {
    return readUnitText(scanner);
  } catch (const UnitsUnreadable& failure) {
    scanner.refuse("the list of units in " + OdString(failure.file) + ", which cannot be read");
  }
}

}  // namespace

bool unitFactor(const OdString& from, const OdString& to, double& factor, Diagnostic& diagnostic) {
  try {
    const Unit source = unitOfText(from);
    const Unit target = unitOfText(to);
    if (source.dimension != target.dimension) {
      throw Diagnostic{Diagnostic::Kind::kDimension,
                       1,
                       target.dimension.text(),
                       "a unit of " + source.dimension.text(),
                       {}};
    }
    const auto result = static_cast<double>((source.numerator * target.denominator) /
                                            (source.denominator * target.numerator));
    if (!std::isfinite(result) || result == 0.0) {
      throw Diagnostic{Diagnostic::Kind::kLimit,
                       1,
                       "a factor of " + numberText(result),
                       "units of more similar sizes",
                       {}};
    }
    factor = result;
    return true;
  } catch (const Diagnostic& failure) {
    diagnostic = failure;
    return false;
  }
}

}  // namespace OdExpression
