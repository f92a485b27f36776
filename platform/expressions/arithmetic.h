// Arithmetic of evaluation: comparisons and steps that see through rounding.
//
// Values travel as texts of 12 digits, so a value may differ from the exact one by 5e-12 of its
// size, and two values that mean the same by 1e-11. Comparisons and rounding to whole numbers
// therefore take values within 1e-11 of each other, relative to the larger one, for equal: a right
// angle that was read from a text equals `90 deg`, and floor(0.3 / 0.1) is 3. Of `a < b`, `a == b`
// and `a > b` exactly one holds. Rounding moves a value to a whole number only when it is also
// within 0.001 of it, so that large values keep their fractions.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace OdExpression {

inline constexpr double kRelativeTolerance = 1e-11;
inline constexpr double kLargestStepError = 1e-3;

[[nodiscard]] inline bool isFinite(double value) noexcept {
  return std::abs(value) <= std::numeric_limits<double>::max();
}

[[nodiscard]] inline bool isEqual(double a, double b) noexcept {
  return a == b || std::abs(a - b) <= kRelativeTolerance * std::max(std::abs(a), std::abs(b));
}

[[nodiscard]] inline bool isLess(double a, double b) noexcept { return a < b && !isEqual(a, b); }

/// The whole number that the value equals within the tolerance, else the value.
[[nodiscard]] inline double snappedToWhole(double value) noexcept {
  const double nearest = std::round(value);
  const double tolerance = std::min(kRelativeTolerance * std::abs(value), kLargestStepError);
  return std::abs(value - nearest) <= tolerance ? nearest : value;
}

/// The whole part of a / b, rounded down.
[[nodiscard]] inline double wholeQuotient(double a, double b) noexcept {
  return std::floor(snappedToWhole(a / b));
}

/// a - b * wholeQuotient(a, b): it has the sign of b, and is 0 when a is a multiple of b.
[[nodiscard]] inline double remainderOf(double a, double b) noexcept {
  const double rest = std::fmod(a, b);
  const double tolerance =
      std::min(kRelativeTolerance * std::abs(a), kLargestStepError * std::abs(b));
  const double toNextMultiple = std::abs(b) - std::abs(rest);
  if (std::abs(rest) <= tolerance || toNextMultiple <= tolerance) return 0.0;
  return std::signbit(rest) == std::signbit(b) ? rest : rest + b;
}

/// Half away from zero; a value just below the half by rounding counts as the half.
[[nodiscard]] inline double roundedToWhole(double value) noexcept {
  const double tolerance = std::min(kRelativeTolerance * std::abs(value), kLargestStepError);
  return std::round(value + std::copysign(tolerance, value));
}

}  // namespace OdExpression
