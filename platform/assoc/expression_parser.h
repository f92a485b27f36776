// OdExpression::Parser: an expression by itself, outside any network.
#pragma once

#include "platform/assoc/eval_variant.h"
#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/expressions/program.h"

namespace OdExpression {

/// Checks the form of texts and computes constant ones. Every name is accepted, whatever it may
/// measure. A value; it knows no drawing.
class Parser {
 public:
  /// The unit of length of the results, by its stored number; millimetres at first.
  void setLengthUnit(int unit) { m_lengthUnit = unit; }
  /// eInvalidInput, with errorMessage(), for a text that is not an expression; the parser then
  /// holds none.
  OdResult setExpression(const OdString& text);
  /// eInvalidKey, with errorMessage(), for a text that no expression could use as a name. Nothing
  /// else changes.
  OdResult setName(const OdString& name);
  [[nodiscard]] const OdString& errorMessage() const { return m_error; }

  /// There is an expression, and it uses no names.
  [[nodiscard]] bool isConstExpression() const;
  /// The value of a constant expression; null for any other.
  [[nodiscard]] OdDbEvalVariantPtr evaluate() const;
  /// Appends the names that the expression uses, each once (without regard to case), as written,
  /// in order of mention.
  void getVariables(OdStringArray& names) const;
  /// The expression uses the name, without regard to case.
  [[nodiscard]] bool usesName(const OdString& name) const;

 private:
  Program m_program;
  OdStringArray m_names;
  OdString m_error;
  int m_lengthUnit = 4;
  bool m_isSet = false;
};

}  // namespace OdExpression
