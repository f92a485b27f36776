// The parser.
//
// Code comes out in the order of the text, for a machine whose registers are a stack. A branch or
// the right side of `and` is code that may be jumped over; what it computes must be where the other
// way leaves its value. So both ways put their values into the same register before they meet:
// inRegister() and release() around the jumps see to it.
#include "platform/expressions/text_parser.h"

#include <string>

#include "platform/base/non_copyable.h"
#include "platform/expressions/unit_library.h"
#include "platform/expressions/words.h"

namespace OdExpression {

// ---- Operators

/// An operator between two values.
struct TextParser::Operator {
  Token token;
  int precedence;
  Operation operation;
  bool isSwapped;    ///< computed as `operation` of the right and the left value
  const char* sign;  ///< in suggestions
};

namespace {

constexpr int kOr = 1, kAnd = 2, kComparison = 3, kSum = 4, kProduct = 5;

OdString nameText(std::wstring_view word) { return OdString(word.data(), word.size()); }

}  // namespace

const TextParser::Operator* TextParser::operatorAt() const {
  static constexpr Operator kOperators[] = {
      {Token::kOr, kOr, Operation::kJumpIfTrue, false, " or "},
      {Token::kAnd, kAnd, Operation::kJumpIfFalse, false, " and "},
      {Token::kLess, kComparison, Operation::kLess, false, " < "},
      {Token::kLessEqual, kComparison, Operation::kLessEqual, false, " <= "},
      {Token::kGreater, kComparison, Operation::kLess, true, " > "},
      {Token::kGreaterEqual, kComparison, Operation::kLessEqual, true, " >= "},
      {Token::kEqual, kComparison, Operation::kEqual, false, " == "},
      {Token::kNotEqual, kComparison, Operation::kNotEqual, false, " != "},
      {Token::kPlus, kSum, Operation::kAdd, false, " + "},
      {Token::kMinus, kSum, Operation::kSubtract, false, " - "},
      {Token::kTimes, kProduct, Operation::kMultiply, false, " * "},
      {Token::kDivide, kProduct, Operation::kDivide, false, " / "},
      {Token::kRemainder, kProduct, Operation::kCallBinary, false, " % "},
  };
  for (const Operator& row : kOperators) {
    if (m_scanner.is(row.token)) return &row;
  }
  return nullptr;
}

// ---- Depth

/// Counts the open recursions.
class TextParser::Depth : OdNonCopyable {
 public:
  explicit Depth(TextParser& parser) : m_parser(parser) {
    if (m_parser.m_depth == kMaxDepth) {
      throw Diagnostic{Diagnostic::Kind::kLimit,
                       parser.m_scanner.column(),
                       "a deeper nesting",
                       OdString().format(L"at most %d levels", kMaxDepth),
                       {}};
    }
    ++m_parser.m_depth;
  }
  ~Depth() { --m_parser.m_depth; }

 private:
  TextParser& m_parser;
};

// ---- Entry

TextParser::TextParser(std::wstring_view text, NameScope& scope, const CompileOptions& options)
    : m_scanner(text),
      m_scope(&scope),
      m_required(options.required),
      m_units{odLengthUnit(options.lengthUnit), &scope, true},
      m_rules(DimensionRules::Strictness::kChecked,
              m_units.length != nullptr ? OdString(m_units.length->symbol) : OdString()) {}

TextParser::TextParser(std::wstring_view text, std::vector<Mention>& mentions)
    : m_scanner(text),
      m_mentions(&mentions),
      m_units{nullptr, nullptr, false},
      m_rules(DimensionRules::Strictness::kUnchecked, {}) {}

Code TextParser::parse() {
  try {
    return parseText();
  } catch (const UnitsUnreadable& failure) {
    throw Diagnostic{Diagnostic::Kind::kSyntax,
                     m_scanner.column(),
                     m_scanner.shown(),
                     "the list of units in " + OdString(failure.file) + ", which cannot be read",
                     {}};
  }
}

Code TextParser::parseText() {
  const Value value = parseChoice();
  if (!m_scanner.is(Token::kEnd)) refuseNoOperator("the end");
  if (m_required) m_rules.requireResult(value, *m_required);
  return m_code.finish(value);
}

void TextParser::expect(Token token, const OdString& shown) {
  if (!m_scanner.is(token)) refuseNoOperator(shown);
  m_scanner.advance();
}

/// At a token that can only follow an operator. A word is either a misspelt unit or a forgotten
/// sign of multiplication.
void TextParser::refuseNoOperator(const OdString& alternative) const {
  if (!m_scanner.is(Token::kName)) m_scanner.refuse("an operator or " + alternative);
  m_scanner.refuse("a unit, an operator or " + alternative, "* " + nameText(m_scanner.word()));
}

// ---- Choices and logic

Value TextParser::parseChoice() {
  const Depth depth(*this);
  const Value condition = parseBinary(kLoosest);
  if (!m_scanner.is(Token::kQuestion)) return condition;
  const int column = m_scanner.column();
  m_scanner.advance();
  return parseBranches(condition, Token::kColon, column);
}

/// Both branches leave their value in the register in which the condition was, or in the next one.
Value TextParser::parseBranches(const Value& condition, Token separator, int column) {
  m_rules.requireTruth(condition);
  const std::size_t toElse = m_code.jumpIf(Operation::kJumpIfFalse, condition, column);
  const Value first = m_code.inRegister(parseChoice());
  const std::size_t toEnd = m_code.jump(column);
  m_code.release(first);
  expect(separator, separator == Token::kColon ? "':'" : "','");
  m_code.land(toElse);
  Value second = m_code.inRegister(parseChoice());
  m_code.land(toEnd);
  second.dimension = m_rules.unified(first, second, separator == Token::kColon ? " : " : ", ");
  second.column = condition.column;
  return second;
}

Value TextParser::parseBinary(int precedence) {
  Value left = m_scanner.is(Token::kNot) && precedence <= kComparison ? parseNot() : parseSigned();
  while (const Operator* op = operatorAt()) {
    if (op->precedence < precedence) break;
    const int column = m_scanner.column();
    m_scanner.advance();
    if (op->precedence <= kAnd) {
      left = parseLogical(*op, left);
      continue;
    }
    left = joined(*op, left, parseBinary(op->precedence + 1), column);
    const Operator* next = operatorAt();
    if (op->precedence == kComparison && next != nullptr && next->precedence == kComparison) {
      m_scanner.refuse("one comparison, or 'and' between two", "a < b and b < c");
    }
  }
  return left;
}

Value TextParser::parseNot() {
  const Depth depth(*this);
  const int column = m_scanner.column();
  m_scanner.advance();
  const Value value = m_scanner.is(Token::kNot) ? parseNot() : parseBinary(kComparison);
  m_rules.requireTruth(value);
  Value result = m_code.unary(Operation::kNot, value, column);
  result.dimension = Dimension::ratio();
  result.column = column;
  return result;
}

/// The right value is computed only when the left one does not decide.
Value TextParser::parseLogical(const Operator& op, const Value& left) {
  m_rules.requireTruth(left);
  const Value first = m_code.inRegister(m_code.unary(Operation::kTruth, left, left.column));
  const std::size_t toEnd = m_code.jumpIf(op.operation, first, left.column);
  const Value right = parseBinary(op.precedence + 1);
  m_rules.requireTruth(right);
  Value result = m_code.inRegister(m_code.unary(Operation::kTruth, right, right.column));
  m_code.land(toEnd);
  result.dimension = Dimension::ratio();
  result.column = left.column;
  return result;
}

// ---- Arithmetic

Value TextParser::joined(const Operator& op, const Value& left, const Value& right, int column) {
  Dimension dimension;
  if (op.operation == Operation::kMultiply) {
    dimension = m_rules.product(left, right, column);
  } else if (op.operation == Operation::kDivide) {
    dimension = m_rules.quotient(left, right, column);
  } else {
    dimension = m_rules.unified(left, right, op.sign);
    if (op.precedence == kComparison) dimension = Dimension::ratio();
  }
  OdUInt16 function = 0;
  if (op.token == Token::kRemainder) function = functionIndex(*findFunction("mod"));
  Value result = op.isSwapped ? m_code.binarySwapped(op.operation, left, right, column)
                              : m_code.binary(op.operation, left, right, column, function);
  result.dimension = dimension;
  return result;
}

Value TextParser::parseSigned() {
  const Token sign = m_scanner.token();
  if (sign != Token::kMinus && sign != Token::kPlus && sign != Token::kExclamation) {
    return parsePower();
  }
  const Depth depth(*this);
  const int column = m_scanner.column();
  m_scanner.advance();
  Value value = parseSigned();
  if (sign != Token::kPlus) {
    const Dimension dimension = sign == Token::kMinus ? value.dimension : Dimension::ratio();
    if (sign == Token::kExclamation) m_rules.requireTruth(value);
    value =
        m_code.unary(sign == Token::kMinus ? Operation::kNegate : Operation::kNot, value, column);
    value.dimension = dimension;
  }
  value.column = column;
  return value;
}

Value TextParser::parsePower() {
  const Value base = parsePrimary();
  if (!m_scanner.is(Token::kPower)) return base;
  const Depth depth(*this);
  const int column = m_scanner.column();
  m_scanner.advance();
  return raisedTo(base, parseSigned(), column);
}

Value TextParser::raisedTo(const Value& base, const Value& exponent, int column) {
  const Dimension dimension = m_rules.power(base, exponent, column);
  const bool isSquare = exponent.isConstant() && exponent.constant == 2.0 && !base.isConstant();
  Value result = isSquare ? m_code.binary(Operation::kMultiply, base, base, column)
                          : m_code.binary(Operation::kPower, base, exponent, column);
  result.dimension = dimension;
  return result;
}

// ---- Operands

Value TextParser::parsePrimary() {
  if (m_scanner.is(Token::kNumber)) {
    const Literal literal = readLiteral(m_scanner, m_units);
    return CodeBuilder::constant(literal.value, literal.dimension, literal.column);
  }
  const int column = m_scanner.column();
  if (m_scanner.is(Token::kName)) return parseName();
  if (!m_scanner.is(Token::kOpen)) m_scanner.refuse("a number, a name or '('");
  m_scanner.advance();
  Value value = parseChoice();
  expect(Token::kClose, "')'");
  value.column = column;
  return withUnit(value);
}

/// A unit may follow a closing parenthesis.
Value TextParser::withUnit(const Value& value) {
  if (!isAtUnit(m_scanner)) return value;
  const int column = m_scanner.column();
  m_rules.requireNumber(value, "value before a unit");
  const Unit unit = readUnit(m_scanner, m_units);
  const Value factor = CodeBuilder::constant(static_cast<double>(unit.numerator / unit.denominator),
                                             unit.dimension, column);
  Value result = m_code.binary(Operation::kMultiply, value, factor, column);
  result.dimension = unit.dimension;
  return result;
}

Value TextParser::parseName() {
  const std::wstring_view word = m_scanner.word();
  const int column = m_scanner.column();
  const Scanner atName = m_scanner;
  m_scanner.advance();
  if (m_scanner.is(Token::kOpen)) {
    m_scanner.advance();
    return parseCall(atName);
  }
  if (const ConstantRow* row = findConstant(LowerCaseWord(word).view())) {
    if (!row->value) atName.refuse("a finite number");
    return CodeBuilder::constant(*row->value, row->dimension, column);
  }
  if (word.size() > kMaxNameLength) {
    throw Diagnostic{Diagnostic::Kind::kLimit,
                     column,
                     "a longer name",
                     OdString().format(L"at most %d characters", kMaxNameLength),
                     {}};
  }
  if (++m_nameCount > kMaxNames) {
    throw Diagnostic{Diagnostic::Kind::kLimit,
                     column,
                     "one more name",
                     OdString().format(L"at most %d", kMaxNames),
                     {}};
  }
  const OdString name = nameText(word);
  if (m_mentions != nullptr) {
    m_mentions->push_back({name, column});
    return CodeBuilder::slot(0, {}, column);
  }
  if (const std::optional<Binding> binding = m_scope->find(name)) {
    return CodeBuilder::slot(binding->slot, binding->dimension, column);
  }
  OdString suggestion;
  if (findFunction(LowerCaseWord(word).view()) != nullptr) {
    suggestion = name + "(...) for the function";
  } else if (isUnit(word)) {
    suggestion = "1 " + name + " for the unit";
  }
  throw Diagnostic{Diagnostic::Kind::kUnknownName, column, atName.shown(), "a known name",
                   suggestion};
}

// ---- Calls

Value TextParser::parseCall(const Scanner& atName) {
  const int column = atName.column();
  const LowerCaseWord lower(atName.word());
  if (lower.view() == "if") return withUnit(parseIf(column));
  const FunctionRow* row = findFunction(lower.view());
  if (row == nullptr) {
    atName.refuse("an operator or the name of a function", nearestFunction(lower.view()));
  }
  Value value = parseArguments(*row, column);
  value.column = column;
  return withUnit(value);
}

Value TextParser::parseIf(int column) {
  const Value condition = parseChoice();
  expect(Token::kComma, "','");
  Value value = parseBranches(condition, Token::kComma, column);
  expect(Token::kClose, "')'");
  value.column = column;
  return value;
}

Value TextParser::parseArguments(const FunctionRow& row, int column) {
  Value value = parseChoice();
  int count = 1;
  for (; m_scanner.is(Token::kComma) && count < row.mostArguments; ++count) {
    m_scanner.advance();
    value = calledWithMore(row, value, parseChoice(), count, column);
  }
  if (count < row.leastArguments) {
    m_scanner.refuse(
        OdString().format(L"',' and argument %d of %d", count + 1, row.leastArguments));
  }
  if (count == 1) value = calledWithOne(row, value, column);
  if (m_scanner.is(Token::kComma)) {
    m_scanner.refuse(OdString().format(L"')' after %d arguments", count));
  }
  expect(Token::kClose, "')'");
  return value;
}

Value TextParser::calledWithOne(const FunctionRow& row, const Value& argument, int column) {
  const Dimension dimension = m_rules.called(row, argument, 1);
  const bool isAngle = argument.dimension == Dimension::angle();
  const FunctionRow& called =
      row.rule == FunctionRule::kOfDegrees && isAngle ? radianFunction(row) : row;
  Value result = m_code.unary(Operation::kCallUnary, argument, column, functionIndex(called));
  result.dimension = dimension;
  return result;
}

Value TextParser::calledWithMore(const FunctionRow& row, const Value& first, const Value& next,
                                 int position, int column) {
  if (row.rule == FunctionRule::kPower) return raisedTo(first, next, column);
  Value agreed = first;
  if (row.rule == FunctionRule::kLogarithm) {
    m_rules.requireNumber(next, "base of the logarithm");
  } else {
    agreed.dimension = m_rules.unified(first, next, ", ");
  }
  const Dimension dimension = m_rules.called(row, agreed, 2);
  const bool isThird = position == 2 && row.binary[1] != nullptr;
  Value result = m_code.binary(isThird ? Operation::kCallTernary : Operation::kCallBinary, first,
                               next, column, functionIndex(row));
  result.dimension = dimension;
  return result;
}

}  // namespace OdExpression
