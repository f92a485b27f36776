// Which dimensions an operation accepts, and what its result measures.
#pragma once

#include <span>

#include "platform/expressions/code_builder.h"
#include "platform/expressions/functions.h"

namespace OdExpression {

/// Checks dimensions, or, when only the form of a text is of interest, takes every one. Each rule
/// raises a Diagnostic at the column of the value that does not fit.
class DimensionRules {
 public:
  enum class Strictness : OdUInt8 { kChecked, kUnchecked };

  /// `lengthUnit` is the symbol of the base unit of length for suggestions, and may be empty.
  DimensionRules(Strictness strictness, OdString lengthUnit)
      : m_isChecked(strictness == Strictness::kChecked), m_lengthUnit(std::move(lengthUnit)) {}

  /// Of a sum, a comparison, a choice or arguments of one function: the dimension of both.
  /// `sign` is what joins them in the suggestion, such as " + ".
  [[nodiscard]] Dimension unified(const Value& left, const Value& right,
                                  const OdString& sign) const;
  [[nodiscard]] Dimension product(const Value& left, const Value& right, int column) const;
  [[nodiscard]] Dimension quotient(const Value& left, const Value& right, int column) const;
  [[nodiscard]] Dimension power(const Value& base, const Value& exponent, int column) const;
  /// A condition is a number: what comparisons give.
  void requireTruth(const Value& value) const;
  void requireNumber(const Value& value, const OdString& place) const;
  /// What the whole expression must measure.
  void requireResult(const Value& value, const Dimension& required) const;
  /// The result of a function of one argument, or of a step function of two that agree.
  [[nodiscard]] Dimension called(const FunctionRow& row, const Value& argument,
                                 int argumentCount) const;

 private:
  [[noreturn]] void refuse(int column, const OdString& found, const OdString& expected,
                           const OdString& suggestion) const;
  [[nodiscard]] OdString converted(const Dimension& from, const Dimension& to) const;
  [[nodiscard]] Dimension checked(const std::optional<Dimension>& result, int column) const;
  void requireAngle(const Value& value, const FunctionRow& row) const;

  bool m_isChecked;
  OdString m_lengthUnit;
};

}  // namespace OdExpression
