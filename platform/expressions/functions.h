// The functions of the language: one row each.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/base/types.h"

namespace OdExpression {

/// What the arguments must measure, and what the result does.
enum class FunctionRule : OdUInt8 {
  kSame,            ///< as the arguments, which agree
  kSquareRoot,      ///< the square root of the argument's dimension
  kCubeRoot,        ///< the cube root of it
  kNumber,          ///< a number gives a ratio
  kOfAngle,         ///< an angle, or a number of radians, gives a ratio
  kOfDegrees,       ///< an angle, or a number of degrees, gives a ratio
  kToAngle,         ///< arguments that agree give an angle; a single one is a number
  kToDegrees,       ///< the same, as a ratio that counts degrees
  kRatio,           ///< arguments that agree give a ratio
  kStep,            ///< with a step as the argument, else a number as it is
  kPower,           ///< as the operator ^
  kLogarithm,       ///< numbers give a ratio
  kDegreesToAngle,  ///< a number gives an angle
  kAngleToDegrees,  ///< an angle, or a number of radians, gives a ratio
};

using UnaryFunction = double (*)(double) noexcept;
using BinaryFunction = double (*)(double, double) noexcept;

/// One function. With more than two arguments it is applied from the left: the value so far and the
/// next argument. `binary[0]` takes the second argument and, unless there is `binary[1]`, all that
/// follow; `binary[1]` takes the third.
struct FunctionRow {
  std::string_view name;
  OdUInt8 leastArguments;
  OdUInt8 mostArguments;
  FunctionRule rule;
  UnaryFunction unary;
  BinaryFunction binary[2];
  const char* domain;  ///< what its arguments must be for a finite result, in words
};

inline constexpr OdUInt8 kMostArguments = 255;

/// In the order of the names.
[[nodiscard]] std::span<const FunctionRow> functionRows() noexcept;
[[nodiscard]] const FunctionRow& functionRow(OdUInt16 index) noexcept;
[[nodiscard]] OdUInt16 functionIndex(const FunctionRow& row) noexcept;
/// By its name in lower case; null when there is none.
[[nodiscard]] const FunctionRow* findFunction(std::string_view name) noexcept;

/// Of a function of degrees (kOfDegrees): the one of the same name that takes radians.
[[nodiscard]] const FunctionRow& radianFunction(const FunctionRow& row) noexcept;

}  // namespace OdExpression
