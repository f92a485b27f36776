// Constants, reserved words and spelling.
#include "platform/expressions/words.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <string>

#include "platform/expressions/functions.h"

namespace OdExpression {

namespace {

constexpr ConstantRow kConstants[] = {
    {"pi", std::numbers::pi, Dimension::plain()},
    {"e", std::numbers::e, Dimension::plain()},
    {"true", 1.0, Dimension::ratio()},
    {"false", 0.0, Dimension::ratio()},
    {"inf", std::nullopt, Dimension::plain()},
    {"infinity", std::nullopt, Dimension::plain()},
    {"nan", std::nullopt, Dimension::plain()},
};

constexpr std::string_view kOperatorWords[] = {"and", "or", "not", "if"};

constexpr std::size_t kLongestWord = 15;

/// The number of letters to insert, remove or replace.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::array<std::size_t, kLongestWord + 1> row{};
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

const ConstantRow* findConstant(std::string_view word) noexcept {
  const auto* row = std::ranges::find(kConstants, word, &ConstantRow::word);
  return row == std::end(kConstants) ? nullptr : row;
}

bool isReservedWord(std::string_view word) noexcept {
  return findConstant(word) != nullptr ||
         std::ranges::find(kOperatorWords, word) != std::end(kOperatorWords);
}

OdString nearestFunction(std::string_view word) {
  constexpr std::size_t kMostEdits = 2;
  std::size_t least = std::min(kMostEdits, word.size() / 2) + 1;
  std::string_view nearest;
  for (const FunctionRow& row : functionRows()) {
    const std::size_t edits = editDistance(word, row.name);
    if (edits >= least) continue;
    least = edits;
    nearest = row.name;
  }
  return OdString(std::string(nearest));
}

}  // namespace OdExpression
