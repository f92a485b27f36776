// Numbers with units.
//
// A text is read from the left without going back: where its meaning depends on what follows (is
// `1 1/2` a number and a fraction, is the hyphen in `5'-3"` a minus), a copy of the scanner reads
// ahead, and is kept only when the form is complete. A copy is a few words and reads a few tokens,
// so that a text costs a time in proportion to its length.
//
// Sums and fractions are computed as long doubles and rounded to a double once, at the end: 1 ft
// 3 in and 15 in are the same number.
#include "platform/expressions/literal.h"

#include <cmath>

#include "platform/expressions/compile.h"
#include "platform/expressions/number_text.h"

namespace OdExpression {

namespace {

constexpr int kLargestUnitPower = 10;

enum class Marks : OdUInt8 { kLengths, kAngles };

/// A number and the unit after it, if any.
struct Part {
  long double value = 0.0L;
  Unit unit;
  bool hasUnit = false;
  Token mark = Token::kEnd;  ///< the unit's sign, of a unit that is a single sign
  int column = 1;
};

OdString shownWord(std::wstring_view word) {
  return L"'" + OdString(word.data(), word.size()) + L"'";
}

std::optional<Unit> markedUnit(Token token, Marks marks) {
  const bool isAngle = marks == Marks::kAngles;
  switch (token) {
    case Token::kFootMark:
      return findUnit(isAngle ? L"arcminute" : L"foot");
    case Token::kInchMark:
      return findUnit(isAngle ? L"arcsecond" : L"inch");
    case Token::kDegreeSign:
      return findUnit(L"degree");
    default:
      return std::nullopt;
  }
}

bool isMark(Token token) {
  return token == Token::kFootMark || token == Token::kInchMark || token == Token::kDegreeSign;
}

/// A word of the language is no unit, and neither is the name of a function that is called.
bool mayBeUnit(const Scanner& scanner) {
  if (!scanner.is(Token::kName)) return false;
  const LowerCaseWord lower(scanner.word());
  if (lower.view() == "pi" || lower.view() == "e") return false;
  Scanner next = scanner;
  next.advance();
  return !next.is(Token::kOpen);
}

std::optional<Unit> unitAt(const Scanner& scanner, Marks marks) {
  if (auto unit = markedUnit(scanner.token(), marks)) return unit;
  return mayBeUnit(scanner) ? findUnit(scanner.word()) : std::nullopt;
}

[[noreturn]] void refusePower(int column) {
  throw Diagnostic{
      Diagnostic::Kind::kDimension,
      column,
      "a unit to a power beyond its range",
      OdString().format(L"powers from -%d to %d", kLargestUnitPower, kLargestUnitPower),
      {}};
}

/// Reads `^2`, `^-1` and superscripts after a unit; 1 when there is none.
int readUnitPower(Scanner& scanner) {
  if (scanner.is(Token::kSquared) || scanner.is(Token::kCubed)) {
    const int power = scanner.is(Token::kSquared) ? 2 : 3;
    scanner.advance();
    return power;
  }
  if (!scanner.is(Token::kPower)) return 1;
  const Scanner atPower = scanner;
  const bool isTight = !scanner.hasSpaceBefore() && !scanner.hasSpaceAfter();
  scanner.advance();
  const bool isNegative = scanner.is(Token::kMinus) && !scanner.hasSpaceAfter();
  if (isNegative) scanner.advance();
  const bool isPower = scanner.is(Token::kNumber) && scanner.isWhole() && scanner.number() >= 1.0 &&
                       scanner.number() <= kLargestUnitPower;
  if (!isTight || !isPower) {
    atPower.refuse(
        OdString().format(L"a whole power from 1 to %d right after the unit", kLargestUnitPower),
        "mm^2 for the power of a unit, (2 mm)^2 for the power of a value");
  }
  const int power = static_cast<int>(scanner.number());
  scanner.advance();
  if (scanner.is(Token::kPower)) scanner.refuse("one power of a unit");
  return isNegative ? -power : power;
}

/// A unit word that is also a name of the drawing could be read in two ways.
void refuseNameAsUnit(const Scanner& scanner, NameScope* scope) {
  if (scope == nullptr || !scanner.is(Token::kName)) return;
  const std::wstring_view word = scanner.word();
  const OdString name(word.data(), word.size());
  if (!scope->find(name)) return;
  throw Diagnostic{Diagnostic::Kind::kSyntax, scanner.column(),
                   shownWord(word) + ", a unit and also a name", "one meaning",
                   "' / " + name + "' with spaces to divide by the name"};
}

/// Reads one factor at the present token, which is a unit.
Unit readFactor(Scanner& scanner, Marks marks) {
  const Unit unit = *unitAt(scanner, marks);
  const int column = scanner.column();
  scanner.advance();
  const std::optional<Unit> power = raised(unit, readUnitPower(scanner));
  if (!power) refusePower(column);
  return *power;
}

/// Reads a unit at the present token, in metres.
Unit readUnitInMetres(Scanner& scanner, NameScope* scope, Marks marks) {
  const int column = scanner.column();
  if (isMark(scanner.token())) return readFactor(scanner, marks);
  Unit unit = readFactor(scanner, marks);
  bool isBelow = false;
  while (true) {
    Scanner next = scanner;
    const bool hasSlash =
        next.is(Token::kDivide) && !next.hasSpaceBefore() && !next.hasSpaceAfter();
    const bool hasDot = next.is(Token::kMiddleDot);
    if (hasSlash || hasDot) next.advance();
    if (!mayBeUnit(next) || !findUnit(next.word())) {
      if (hasDot) next.refuse("a unit");
      return unit;
    }
    if (isBelow && !hasSlash) next.refuse("one unit after the slash", "kg/m/s or kg/s m");
    if (hasSlash) refuseNameAsUnit(next, scope);
    scanner = next;
    isBelow = isBelow || hasSlash;
    const Unit factor = readFactor(scanner, marks);
    const std::optional<Unit> joined = hasSlash ? quotient(unit, factor) : product(unit, factor);
    if (!joined) refusePower(column);
    unit = *joined;
  }
}

Unit inBase(const Unit& unit, const UnitContext& context, int column) {
  if (unit.dimension.power(Dimension::kLength) == 0.0) return unit;
  if (context.length != nullptr) return countedIn(*context.length, unit);
  if (!context.needsLength) return unit;
  throw Diagnostic{Diagnostic::Kind::kDimension,
                   column,
                   "a unit of length in a drawing without one",
                   "a number without a unit, or a unit of length for the drawing",
                   {}};
}

/// Reads the denominator of a fraction if one begins at the slash: `/8`.
bool readFractionBelow(Scanner& scanner, double& below) {
  Scanner next = scanner;
  if (!next.is(Token::kDivide) || next.hasSpaceBefore() || next.hasSpaceAfter()) return false;
  next.advance();
  if (!next.is(Token::kNumber) || !next.isWhole() || next.number() == 0.0) return false;
  below = next.number();
  next.advance();
  scanner = next;
  return true;
}

/// Reads a number, with its fraction.
long double readNumber(Scanner& scanner, Marks marks) {
  const long double first = scanner.preciseNumber();
  const bool isWhole = scanner.isWhole();
  scanner.advance();
  if (!isWhole) return first;
  double below = 1.0;
  Scanner next = scanner;
  if (next.is(Token::kNumber) && next.isWhole() && next.hasSpaceBefore()) {
    const long double above = next.number();
    next.advance();
    if (!readFractionBelow(next, below)) return first;
    if (above >= below) scanner.refuse("a fraction below 1 after a whole number");
    scanner = next;
    return first + above / below;
  }
  if (readFractionBelow(next, below) && unitAt(next, marks)) {
    scanner = next;
    return first / below;
  }
  return first;
}

Part readPart(Scanner& scanner, const UnitContext& context, Marks marks) {
  Part part;
  part.column = scanner.column();
  part.value = readNumber(scanner, marks);
  if (!unitAt(scanner, marks)) return part;
  part.hasUnit = true;
  if (isMark(scanner.token())) part.mark = scanner.token();
  part.unit = inBase(readUnitInMetres(scanner, context.scope, marks), context, part.column);
  return part;
}

long double sizeOf(const Unit& unit) { return unit.numerator / unit.denominator; }

/// Skips the hyphen between feet and inches: 5'-3".
bool skipHyphen(Scanner& scanner, const Part& last, const UnitContext& context) {
  Scanner next = scanner;
  if (last.mark != Token::kFootMark || !next.is(Token::kMinus)) return false;
  if (next.hasSpaceBefore() || next.hasSpaceAfter()) return false;
  next.advance();
  if (!next.is(Token::kNumber)) return false;
  Scanner after = next;
  if (readPart(after, context, Marks::kLengths).mark != Token::kInchMark) return false;
  scanner = next;
  return true;
}

double toDouble(long double value, int column) {
  const auto rounded = static_cast<double>(value);
  if (std::isfinite(rounded) && (rounded != 0.0 || value == 0.0L)) return rounded;
  throw Diagnostic{Diagnostic::Kind::kLimit,
                   column,
                   "a number beyond the range of values",
                   "a number between 5e-324 and 1.8e308 in the units of the drawing",
                   {}};
}

void refuseUnlike(const Part& part, const Part& last) {
  if (!part.hasUnit) {
    throw Diagnostic{
        Diagnostic::Kind::kSyntax, part.column, "a second number", "a unit after it", {}};
  }
  if (part.unit.dimension != last.unit.dimension) {
    throw Diagnostic{Diagnostic::Kind::kDimension, part.column, part.unit.dimension.text(),
                     last.unit.dimension.text() + " after " + last.unit.dimension.text(),
                     "an operator between them"};
  }
  if (sizeOf(part.unit) >= sizeOf(last.unit)) {
    throw Diagnostic{Diagnostic::Kind::kSyntax, part.column, "a unit that is not smaller",
                     "units from large to small", "2 ft 3 in"};
  }
}

}  // namespace

bool isAtUnit(const Scanner& scanner) { return unitAt(scanner, Marks::kLengths).has_value(); }

Unit readUnit(Scanner& scanner, const UnitContext& context) {
  const int column = scanner.column();
  return inBase(readUnitInMetres(scanner, context.scope, Marks::kLengths), context, column);
}

Unit readUnitText(Scanner& scanner) {
  Unit unit;
  bool mustDivide = scanner.is(Token::kNumber) && scanner.number() == 1.0;
  if (mustDivide) scanner.advance();
  bool isFirst = !mustDivide;
  while (!scanner.is(Token::kEnd) || isFirst) {
    const bool hasSlash = scanner.is(Token::kDivide) && !isFirst;
    const bool hasSign = scanner.is(Token::kTimes) || scanner.is(Token::kMiddleDot);
    if (hasSlash || (hasSign && !isFirst && !mustDivide)) scanner.advance();
    if ((mustDivide && !hasSlash) || !unitAt(scanner, Marks::kLengths)) scanner.refuse("a unit");
    const int column = scanner.column();
    const Unit factor = readFactor(scanner, Marks::kLengths);
    const std::optional<Unit> joined = hasSlash ? quotient(unit, factor) : product(unit, factor);
    if (!joined) refusePower(column);
    unit = *joined;
    isFirst = mustDivide = false;
  }
  return unit;
}

Literal readLiteral(Scanner& scanner, const UnitContext& context) {
  const Scanner atNumber = scanner;
  Part last = readPart(scanner, context, Marks::kLengths);
  Literal literal{0.0, {}, last.column};
  if (!last.hasUnit) {
    // A single number was already rounded to the nearest double.
    const bool isSingle = last.value == atNumber.preciseNumber();
    literal.value = isSingle ? atNumber.number() : toDouble(last.value, last.column);
    return literal;
  }
  literal.dimension = last.unit.dimension;
  const bool isAngle = literal.dimension == Dimension::angle();
  const Marks marks = isAngle ? Marks::kAngles : Marks::kLengths;
  long double sum = last.value * last.unit.numerator / last.unit.denominator;
  while (scanner.is(Token::kNumber) || skipHyphen(scanner, last, context)) {
    const Part part = readPart(scanner, context, marks);
    refuseUnlike(part, last);
    sum += part.value * part.unit.numerator / part.unit.denominator;
    last = part;
  }
  literal.value = toDouble(sum, literal.column);
  return literal;
}

}  // namespace OdExpression
