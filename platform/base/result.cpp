// Texts and names of the result codes.
#include "platform/base/result.h"

#include <algorithm>
#include <array>

namespace {

struct ResultRow {
  OdInt32 number;
  const char* name;
  const char* text;
};

constexpr std::array kRows = {
#define OD_RESULT(number, enumerator, text) ResultRow{number, #enumerator, text},
#include "platform/base/result_rows.inc"
#undef OD_RESULT
};

// Sorted by number, which also proves that no number is given twice.
constexpr bool risesStrictly() {
  for (std::size_t i = 1; i < kRows.size(); ++i) {
    if (kRows[i - 1].number >= kRows[i].number) return false;
  }
  return true;
}
static_assert(risesStrictly(), "result rows are sorted by number and unique");

const ResultRow* findRow(OdResult result) noexcept {
  const auto row = std::lower_bound(
      kRows.begin(), kRows.end(), static_cast<OdInt32>(result),
      [](const ResultRow& candidate, OdInt32 number) { return candidate.number < number; });
  return row != kRows.end() && row->number == result ? row : nullptr;
}

}  // namespace

const char* odResultText(OdResult result) noexcept {
  const ResultRow* row = findRow(result);
  return row ? row->text : "unknown result";
}

const char* odResultName(OdResult result) noexcept {
  const ResultRow* row = findRow(result);
  return row ? row->name : "";
}
