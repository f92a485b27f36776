// Rows and bodies of the functions.
#include "platform/expressions/functions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <numbers>

#include "platform/expressions/arithmetic.h"

namespace OdExpression {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

// ---- Degrees: exact where the sine is 0, 1/2 or 1, which radians cannot be.

/// The sine of an angle in degrees. The angle is brought between 0 and 90 without rounding.
double sineOfDegrees(double degrees) noexcept {
  double rest = std::fmod(std::abs(degrees), 360.0);
  double sign = std::signbit(degrees) ? -1.0 : 1.0;
  if (rest >= 180.0) {
    rest -= 180.0;
    sign = -sign;
  }
  if (rest > 90.0) rest = 180.0 - rest;
  if (rest == 0.0) return 0.0;
  if (rest == 30.0) return sign * 0.5;
  return sign * (rest > 45.0 ? std::cos((90.0 - rest) * kDegree) : std::sin(rest * kDegree));
}

double cosineOfDegrees(double degrees) noexcept {
  return sineOfDegrees(90.0 - std::fmod(std::abs(degrees), 360.0));
}

double tangentOfDegrees(double degrees) noexcept {
  if (std::fmod(degrees, 45.0) == 0.0) {
    // Multiples of 45: 0, 1, none and -1.
    const double quarter = std::fmod(std::fmod(degrees, 180.0) + 180.0, 180.0) / 45.0;
    constexpr double kTangents[] = {0.0, 1.0, INFINITY, -1.0};
    return kTangents[static_cast<int>(quarter)];
  }
  return sineOfDegrees(degrees) / cosineOfDegrees(degrees);
}

// ---- Steps

double toStep(double (*rounding)(double) noexcept, double value, double step) noexcept {
  return rounding(value / step) * step;
}

double floorOf(double x) noexcept { return std::floor(snappedToWhole(x)); }
double ceilOf(double x) noexcept { return std::ceil(snappedToWhole(x)); }
double truncOf(double x) noexcept { return std::trunc(snappedToWhole(x)); }

constexpr UnaryFunction kNoUnary = nullptr;

using Rule = FunctionRule;

// clang-format off
constexpr FunctionRow kRows[] = {
    {"abs", 1, 1, Rule::kSame, [](double x) noexcept { return std::abs(x); }, {}, ""},
    {"acos", 1, 1, Rule::kToAngle, [](double x) noexcept { return std::acos(x); }, {},
     "a number from -1 to 1"},
    {"acosd", 1, 1, Rule::kToDegrees, [](double x) noexcept { return std::acos(x) / kDegree; }, {},
     "a number from -1 to 1"},
    {"acosh", 1, 1, Rule::kNumber, [](double x) noexcept { return std::acosh(x); }, {},
     "a number of at least 1"},
    {"asin", 1, 1, Rule::kToAngle, [](double x) noexcept { return std::asin(x); }, {},
     "a number from -1 to 1"},
    {"asind", 1, 1, Rule::kToDegrees, [](double x) noexcept { return std::asin(x) / kDegree; }, {},
     "a number from -1 to 1"},
    {"asinh", 1, 1, Rule::kNumber, [](double x) noexcept { return std::asinh(x); }, {}, ""},
    {"atan", 1, 1, Rule::kToAngle, [](double x) noexcept { return std::atan(x); }, {}, ""},
    {"atan2", 2, 2, Rule::kToAngle, kNoUnary,
     {[](double y, double x) noexcept { return std::atan2(y, x); }}, ""},
    {"atan2d", 2, 2, Rule::kToDegrees, kNoUnary,
     {[](double y, double x) noexcept { return std::atan2(y, x) / kDegree; }}, ""},
    {"atand", 1, 1, Rule::kToDegrees, [](double x) noexcept { return std::atan(x) / kDegree; }, {},
     ""},
    {"atanh", 1, 1, Rule::kNumber, [](double x) noexcept { return std::atanh(x); }, {},
     "a number between -1 and 1"},
    {"cbrt", 1, 1, Rule::kCubeRoot, [](double x) noexcept { return std::cbrt(x); }, {}, ""},
    {"ceil", 1, 2, Rule::kStep, ceilOf,
     {[](double x, double step) noexcept { return toStep(ceilOf, x, step); }},
     "a step other than 0"},
    {"clamp", 3, 3, Rule::kSame, kNoUnary,
     {[](double x, double low) noexcept { return std::max(x, low); },
      [](double x, double high) noexcept { return std::min(x, high); }}, ""},
    {"cos", 1, 1, Rule::kOfAngle, [](double x) noexcept { return std::cos(x); }, {}, ""},
    {"cosd", 1, 1, Rule::kOfDegrees, cosineOfDegrees, {}, ""},
    {"cosh", 1, 1, Rule::kNumber, [](double x) noexcept { return std::cosh(x); }, {},
     "a smaller number"},
    {"degrees", 1, 1, Rule::kAngleToDegrees, [](double x) noexcept { return x / kDegree; }, {}, ""},
    {"div", 2, 2, Rule::kRatio, kNoUnary, {wholeQuotient}, "a divisor other than 0"},
    {"exp", 1, 1, Rule::kNumber, [](double x) noexcept { return std::exp(x); }, {},
     "a smaller number"},
    {"floor", 1, 2, Rule::kStep, floorOf,
     {[](double x, double step) noexcept { return toStep(floorOf, x, step); }},
     "a step other than 0"},
    {"hypot", 2, kMostArguments, Rule::kSame, kNoUnary,
     {[](double x, double y) noexcept { return std::hypot(x, y); }}, "smaller numbers"},
    {"ln", 1, 1, Rule::kNumber, [](double x) noexcept { return std::log(x); }, {},
     "a number above 0"},
    {"log", 2, 2, Rule::kLogarithm, kNoUnary,
     {[](double x, double base) noexcept { return std::log(x) / std::log(base); }},
     "a number and a base above 0, and a base other than 1"},
    {"log10", 1, 1, Rule::kNumber, [](double x) noexcept { return std::log10(x); }, {},
     "a number above 0"},
    {"log2", 1, 1, Rule::kNumber, [](double x) noexcept { return std::log2(x); }, {},
     "a number above 0"},
    {"max", 1, kMostArguments, Rule::kSame, [](double x) noexcept { return x; },
     {[](double x, double y) noexcept { return std::max(x, y); }}, ""},
    {"min", 1, kMostArguments, Rule::kSame, [](double x) noexcept { return x; },
     {[](double x, double y) noexcept { return std::min(x, y); }}, ""},
    {"mod", 2, 2, Rule::kSame, kNoUnary, {remainderOf}, "a divisor other than 0"},
    {"pow", 2, 2, Rule::kPower, kNoUnary,
     {[](double x, double y) noexcept { return std::pow(x, y); }},
     "a base above 0 or a whole exponent, and a smaller power"},
    {"radians", 1, 1, Rule::kDegreesToAngle, [](double x) noexcept { return x * kDegree; }, {}, ""},
    {"rem", 2, 2, Rule::kSame, kNoUnary,
     {[](double a, double b) noexcept {
       return std::copysign(remainderOf(std::abs(a), std::abs(b)), a);
     }}, "a divisor other than 0"},
    {"round", 1, 2, Rule::kStep, roundedToWhole,
     {[](double x, double step) noexcept { return toStep(roundedToWhole, x, step); }},
     "a step other than 0"},
    {"sign", 1, 1, Rule::kRatio,
     [](double x) noexcept { return x > 0.0 ? 1.0 : (x < 0.0 ? -1.0 : 0.0); }, {}, ""},
    {"sin", 1, 1, Rule::kOfAngle, [](double x) noexcept { return std::sin(x); }, {}, ""},
    {"sind", 1, 1, Rule::kOfDegrees, sineOfDegrees, {}, ""},
    {"sinh", 1, 1, Rule::kNumber, [](double x) noexcept { return std::sinh(x); }, {},
     "a smaller number"},
    {"sqrt", 1, 1, Rule::kSquareRoot, [](double x) noexcept { return std::sqrt(x); }, {},
     "a number of at least 0"},
    {"tan", 1, 1, Rule::kOfAngle, [](double x) noexcept { return std::tan(x); }, {}, ""},
    {"tand", 1, 1, Rule::kOfDegrees, tangentOfDegrees, {}, "an angle that is no odd multiple of 90"},
    {"tanh", 1, 1, Rule::kNumber, [](double x) noexcept { return std::tanh(x); }, {}, ""},
    {"trunc", 1, 2, Rule::kStep, truncOf,
     {[](double x, double step) noexcept { return toStep(truncOf, x, step); }},
     "a step other than 0"},
};
// clang-format on

constexpr bool rowsAreInOrder() {
  return std::ranges::is_sorted(kRows, std::ranges::less_equal{}, &FunctionRow::name);
}
static_assert(rowsAreInOrder());

}  // namespace

std::span<const FunctionRow> functionRows() noexcept { return kRows; }

const FunctionRow& functionRow(OdUInt16 index) noexcept { return kRows[index]; }

OdUInt16 functionIndex(const FunctionRow& row) noexcept {
  return static_cast<OdUInt16>(&row - kRows);
}

const FunctionRow* findFunction(std::string_view name) noexcept {
  const auto row = std::ranges::lower_bound(kRows, name, {}, &FunctionRow::name);
  return row != std::end(kRows) && row->name == name ? row : nullptr;
}

const FunctionRow& radianFunction(const FunctionRow& row) noexcept {
  return *findFunction(row.name.substr(0, row.name.size() - 1));
}

}  // namespace OdExpression
