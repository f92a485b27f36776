// Reads the text of an expression and emits its code.
//
// Precedence, from the loosest: `? :`, or, and, not, comparisons, sums, products, signs, powers,
// units. Parsing goes by precedence: a level reads an operand of the next tighter levels and then
// joins it with operators of its own level, from the left. Every recursion counts as one of depth,
// and the depth is bounded, so no text can exhaust the stack. Code is emitted as soon as an
// operator has both operands; no tree is built.
#pragma once

#include <vector>

#include "platform/expressions/code_builder.h"
#include "platform/expressions/compile.h"
#include "platform/expressions/dimension_rules.h"
#include "platform/expressions/literal.h"
#include "platform/expressions/names.h"
#include "platform/expressions/scanner.h"

namespace OdExpression {

class TextParser {
 public:
  /// For a program; the names are looked up in the scope.
  TextParser(std::wstring_view text, NameScope& scope, const CompileOptions& options);
  /// For the form alone: every name is known, and dimensions are not checked.
  TextParser(std::wstring_view text, std::vector<Mention>& mentions);

  /// Parses the whole text. Raises a Diagnostic.
  [[nodiscard]] Code parse();

 private:
  struct Operator;
  class Depth;

  Code parseText();
  Value parseChoice();
  Value parseBranches(const Value& condition, Token separator, int column);
  Value parseBinary(int precedence);
  Value parseNot();
  Value parseLogical(const Operator& op, const Value& left);
  Value parseSigned();
  Value parsePower();
  Value parsePrimary();
  Value parseName();
  Value parseCall(const Scanner& atName);
  Value parseIf(int column);
  Value parseArguments(const FunctionRow& row, int column);

  Value joined(const Operator& op, const Value& left, const Value& right, int column);
  Value raisedTo(const Value& base, const Value& exponent, int column);
  Value withUnit(const Value& value);
  Value calledWithOne(const FunctionRow& row, const Value& argument, int column);
  Value calledWithMore(const FunctionRow& row, const Value& first, const Value& next, int position,
                       int column);
  void expect(Token token, const OdString& shown);
  [[noreturn]] void refuseNoOperator(const OdString& alternative) const;

  [[nodiscard]] const Operator* operatorAt() const;

  static constexpr int kLoosest = 1;

  Scanner m_scanner;
  NameScope* m_scope = nullptr;
  std::vector<Mention>* m_mentions = nullptr;
  std::optional<Dimension> m_required;
  UnitContext m_units;
  DimensionRules m_rules;
  CodeBuilder m_code;
  int m_depth = 0;
  int m_nameCount = 0;
};

}  // namespace OdExpression
