// Units: rows of our own, then the library.
#include "platform/expressions/unit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/base/string.h"
#include "platform/expressions/unit_library.h"

namespace OdExpression {

namespace {

struct AngleRow {
  const wchar_t* symbol;
  const wchar_t* name;
  const wchar_t* plural;
  long double radians;
};

constexpr AngleRow kAngles[] = {
    {L"rad", L"radian", L"radians", 1.0L},
    {L"deg", L"degree", L"degrees", std::numbers::pi_v<long double> / 180.0L},
};

Unit lengthOf(const OdLengthUnit& row) {
  return {row.numerator, row.denominator, Dimension::length()};
}

/// Compares with a text in UTF-8; only the micro sign is not ASCII, in either of its two forms.
bool isSame(std::wstring_view word, const char* utf8) {
  constexpr wchar_t kMicroSign = 0xB5;
  constexpr wchar_t kGreekMu = 0x3BC;
  const bool isMicro = static_cast<unsigned char>(*utf8) == 0xC2;
  if (isMicro) {
    if (word.empty() || (word.front() != kMicroSign && word.front() != kGreekMu)) return false;
    word.remove_prefix(1);
    utf8 += 2;
  }
  const std::string_view rest(utf8);
  return !word.empty() && std::ranges::equal(word, rest, {}, {}, [](char c) {
    return static_cast<wchar_t>(static_cast<unsigned char>(c));
  });
}

std::optional<Unit> findOwn(std::wstring_view word) {
  const auto units = odLengthUnits().subspan(1);
  for (const OdLengthUnit& row : units) {
    const char* const texts[] = {row.symbol, row.unitText, row.singular, row.name};
    for (const char* text : texts) {
      if (isSame(word, text)) return lengthOf(row);
    }
  }
  for (const AngleRow& row : kAngles) {
    if (word == row.symbol || word == row.name || word == row.plural) {
      return Unit{row.radians, 1.0L, Dimension::angle()};
    }
  }
  return std::nullopt;
}

bool isPowerDigit(wchar_t ch) { return ch >= L'1' && ch <= L'9'; }

bool isCapital(wchar_t ch) { return ch >= L'A' && ch <= L'Z'; }

std::optional<Unit> findInCapitals(std::wstring_view word) {
  if (!std::ranges::all_of(word, isCapital)) return std::nullopt;
  std::wstring lower(word);
  std::ranges::transform(lower, lower.begin(),
                         [](wchar_t ch) { return static_cast<wchar_t>(ch - L'A' + L'a'); });
  return findOwn(lower);
}

}  // namespace

std::optional<Unit> findUnit(std::wstring_view word) {
  if (word.empty()) return std::nullopt;
  if (auto own = findOwn(word)) return own;
  if (isPowerDigit(word.back())) {
    const auto unit = findUnit(word.substr(0, word.size() - 1));
    return unit ? raised(*unit, static_cast<int>(word.back() - L'0')) : std::nullopt;
  }
  if (auto foreign = findInLibrary(word)) return foreign;
  return findInCapitals(word);
}

bool isUnit(std::wstring_view word) {
  try {
    return findUnit(word).has_value();
  } catch (const UnitsUnreadable&) {
    return false;
  }
}

std::optional<Unit> product(const Unit& a, const Unit& b) {
  const auto dimension = a.dimension.times(b.dimension);
  if (!dimension) return std::nullopt;
  return Unit{a.numerator * b.numerator, a.denominator * b.denominator, *dimension};
}

std::optional<Unit> quotient(const Unit& a, const Unit& b) {
  const auto dimension = a.dimension.over(b.dimension);
  if (!dimension) return std::nullopt;
  return Unit{a.numerator * b.denominator, a.denominator * b.numerator, *dimension};
}

std::optional<Unit> raised(const Unit& unit, int power) {
  Unit result;
  for (int i = 0; i < std::abs(power); ++i) {
    const auto next = power > 0 ? product(result, unit) : quotient(result, unit);
    if (!next) return std::nullopt;
    result = *next;
  }
  return result;
}

Unit countedIn(const OdLengthUnit& length, const Unit& unit) {
  Unit result = unit;
  const int power = static_cast<int>(unit.dimension.power(Dimension::kLength));
  for (int i = 0; i < std::abs(power); ++i) {
    result.numerator *= power > 0 ? length.denominator : length.numerator;
    result.denominator *= power > 0 ? length.numerator : length.denominator;
  }
  return result;
}

}  // namespace OdExpression
