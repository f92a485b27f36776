// Rules of dimensions.
#include "platform/expressions/dimension_rules.h"

#include <string>

#include "platform/expressions/diagnostic.h"

namespace OdExpression {

namespace {

constexpr const char* kPowerRange = "powers between -10 and 10, in twelfths";

OdString nameOf(const FunctionRow& row) { return OdString(std::string(row.name)); }

}  // namespace

void DimensionRules::refuse(int column, const OdString& found, const OdString& expected,
                            const OdString& suggestion) const {
  throw Diagnostic{Diagnostic::Kind::kDimension, column, found, expected, suggestion};
}

/// How a value of one dimension can be written where another one is needed; in the words of both.
OdString DimensionRules::converted(const Dimension& from, const Dimension& to) const {
  if (from == Dimension::ratio() && to == Dimension::angle()) return "ratio * 1 rad";
  if (from == Dimension::ratio() && to == Dimension::length() && !m_lengthUnit.isEmpty()) {
    return "ratio * 1 " + m_lengthUnit;
  }
  if (to == from.raised(0.5)) return "sqrt(" + from.text() + ")";
  if (to == from.raised(1.0 / 3.0)) return "cbrt(" + from.text() + ")";
  return to.text();
}

Dimension DimensionRules::unified(const Value& left, const Value& right,
                                  const OdString& sign) const {
  const auto both = left.dimension.unified(right.dimension);
  if (both || !m_isChecked) return both.value_or(left.dimension);
  const OdString found = right.dimension.text();
  const OdString expected = left.dimension.text();
  refuse(right.column, found, expected,
         expected + sign + converted(right.dimension, left.dimension));
}

Dimension DimensionRules::checked(const std::optional<Dimension>& result, int column) const {
  if (result || !m_isChecked) return result.value_or(Dimension());
  refuse(column, "a power of a dimension beyond its range", kPowerRange, {});
}

Dimension DimensionRules::product(const Value& left, const Value& right, int column) const {
  return checked(left.dimension.times(right.dimension), column);
}

Dimension DimensionRules::quotient(const Value& left, const Value& right, int column) const {
  return checked(left.dimension.over(right.dimension), column);
}

Dimension DimensionRules::power(const Value& base, const Value& exponent, int column) const {
  requireNumber(exponent, "exponent");
  if (base.dimension.kind() != Dimension::Kind::kQuantity || !m_isChecked) {
    const bool isOne = exponent.isConstant() && exponent.constant == 1.0;
    return *base.dimension.raised(isOne ? 1.0 : 2.0);
  }
  if (!exponent.isConstant()) {
    refuse(exponent.column, "an exponent that varies",
           "a constant exponent for " + base.dimension.text(),
           "(" + base.dimension.text() + " / " + base.dimension.text() + ") ^ exponent");
  }
  return checked(base.dimension.raised(exponent.constant), column);
}

void DimensionRules::requireTruth(const Value& value) const {
  if (!m_isChecked || value.dimension.isNumber()) return;
  const OdString text = value.dimension.text();
  refuse(value.column, text, "a comparison or a number", text + " != 0");
}

void DimensionRules::requireNumber(const Value& value, const OdString& place) const {
  if (!m_isChecked || value.dimension.isNumber()) return;
  const OdString text = value.dimension.text();
  const OdString unit = value.dimension == Dimension::angle()    ? OdString("1 rad")
                        : value.dimension == Dimension::length() ? "1 " + m_lengthUnit
                                                                 : text;
  refuse(value.column, text, "a number as the " + place, text + " / " + unit);
}

void DimensionRules::requireResult(const Value& value, const Dimension& required) const {
  if (!m_isChecked || required.unified(value.dimension) == required) return;
  if (required == Dimension::plain() && value.dimension.isNumber()) return;
  refuse(value.column, value.dimension.text(), required.text() + " as the result",
         converted(value.dimension, required));
}

void DimensionRules::requireAngle(const Value& value, const FunctionRow& row) const {
  if (!m_isChecked || value.dimension.isNumber() || value.dimension == Dimension::angle()) return;
  refuse(value.column, value.dimension.text(), "an angle or a number in " + nameOf(row),
         nameOf(row) + "(angle)");
}

Dimension DimensionRules::called(const FunctionRow& row, const Value& argument,
                                 int argumentCount) const {
  const Dimension& dimension = argument.dimension;
  const OdString place = "argument of " + nameOf(row);
  switch (row.rule) {
    case FunctionRule::kSame:
      return dimension;
    case FunctionRule::kRatio:
      return Dimension::ratio();
    case FunctionRule::kSquareRoot:
      return checked(dimension.raised(0.5), argument.column);
    case FunctionRule::kCubeRoot:
      return checked(dimension.raised(1.0 / 3.0), argument.column);
    case FunctionRule::kNumber:
    case FunctionRule::kLogarithm:
      requireNumber(argument, place);
      return Dimension::ratio();
    case FunctionRule::kOfAngle:
    case FunctionRule::kOfDegrees:
    case FunctionRule::kAngleToDegrees:
      requireAngle(argument, row);
      return Dimension::ratio();
    case FunctionRule::kDegreesToAngle:
      requireNumber(argument, place);
      return Dimension::angle();
    case FunctionRule::kToAngle:
    case FunctionRule::kToDegrees:
      if (argumentCount == 1) requireNumber(argument, place);
      return row.rule == FunctionRule::kToAngle ? Dimension::angle() : Dimension::ratio();
    case FunctionRule::kStep:
      if (argumentCount == 1 && m_isChecked && !dimension.isNumber()) {
        refuse(argument.column, dimension.text(), "a number, or a step after it",
               nameOf(row) + "(" + dimension.text() + ", " + dimension.text() + ")");
      }
      return dimension;
    case FunctionRule::kPower:
      break;  // has a rule of its own
  }
  return dimension;
}

}  // namespace OdExpression
