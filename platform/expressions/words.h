// Words with a meaning of their own.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/base/string.h"
#include "platform/expressions/dimension.h"

namespace OdExpression {

/// A word that is a value.
struct ConstantRow {
  std::string_view word;        ///< in lower case
  std::optional<double> value;  ///< nothing for words that a number may not be
  Dimension dimension;
};

/// Null when the word, in lower case, is no constant.
[[nodiscard]] const ConstantRow* findConstant(std::string_view word) noexcept;
/// True for the words that no name may be: constants, operators and `if`.
[[nodiscard]] bool isReservedWord(std::string_view word) noexcept;
/// The name of the function that is spelled most like the word, or nothing when none is near.
[[nodiscard]] OdString nearestFunction(std::string_view word);

}  // namespace OdExpression
