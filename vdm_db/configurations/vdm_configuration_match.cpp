// Which rows of a table agree with given values.
//
// A question names up to all columns, and every row is an answer to be ranked, so the work is rows
// times columns comparisons; what can be saved is the cost of one. Therefore each column lies
// together as doubles, and one loop without branches compares a column with the sought number and
// adds to the disagreements of each row, which the compiler turns into vector instructions. Rows
// are taken in blocks, whose counters stay in the nearest cache while the columns pass by. Texts
// take part in the same loop: when the table is arranged, the texts of a column are sorted, equal
// ones form a class, and a cell holds the number of its class. A question looks its text up among
// the classes, by halving, and compares class numbers. Class numbers differ by 1 at least, so the
// bound for numbers separates them.
//
// A required disagreement sets a high bit of a row's count, which no number of columns reaches.
// Rows are ranked by counting how many have each number of disagreements: two passes, no sorting.
// Arranging a column of texts costs a hash of each cell and a sort of the different ones; all else
// is linear.
#include "vdm_db/configurations/vdm_configuration_match.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>

#include "platform/base/case_compare.h"

namespace {

constexpr double kSameNumber = 1e-10;  // numbers this close, the bound included, agree
// Agrees with no finite number: it is sought where no cell can agree, in classes and in columns
// that hold neither numbers nor texts.
constexpr double kNoClass = std::numeric_limits<double>::infinity();
// Counters have the width of the numbers that are compared.
constexpr OdInt64 kOut = OdInt64{1} << 40;
constexpr OdUInt32 kBlock = 1024;  // rows; their counters take 8 kB

// Adds `weight` to the count of each value whose difference is above the bound. The difference of
// what is not a number is above nothing, and neither is that of infinity and itself.
void countDisagreements(const double* values, OdUInt32 count, double sought, double bound,
                        OdInt64 weight, OdInt64* counts) {
  for (OdUInt32 i = 0; i < count; ++i) {
    counts[i] += std::abs(values[i] - sought) > bound ? weight : 0;
  }
}

// Both numbers were decimal texts once, and each was rounded by up to half a unit in its last
// place: 10.0000000001 - 10 is above 1e-10 as doubles are.
double boundFor(double sought) {
  if (!std::isfinite(sought)) return kSameNumber;
  return kSameNumber + std::abs(sought) * std::numeric_limits<double>::epsilon();
}

}  // namespace

VdmConfigurationMatch::VdmConfigurationMatch(const VdmConfigurationCells& cells) {
  if (!cells.hasCells()) return;
  for (OdUInt32 column = 0; column < cells.columns(); ++column) {
    if (cells.columnTypes[column] == VdmConfigurationCells::kString) {
      m_columns.push_back(arrangeTexts(cells, column));
      continue;
    }
    const bool isNumeric = cells.columnTypes[column] == VdmConfigurationCells::kNumeric;
    Column& arranged = m_columns.emplace_back();
    arranged.values.resize(cells.rows(), 0.0);
    for (OdUInt32 row = 0; isNumeric && row < cells.rows(); ++row) {
      arranged.values[row] = cells.numbers[cells.rowStart(row) + column];
    }
  }
}

VdmConfigurationMatch::Column VdmConfigurationMatch::arrangeTexts(
    const VdmConfigurationCells& cells, OdUInt32 column) {
  const auto textOf = [&](OdUInt32 row) -> const OdString& {
    return cells.texts[cells.rowStart(row) + column];
  };
  // The first row of each different text, sorted; equal texts of another case follow each other.
  std::unordered_map<OdString, OdUInt32> different;
  std::vector<OdUInt32> order;
  for (OdUInt32 row = 0; row < cells.rows(); ++row) {
    if (different.try_emplace(textOf(row), 0).second) order.push_back(row);
  }
  std::sort(order.begin(), order.end(),
            [&](OdUInt32 a, OdUInt32 b) { return odStrICmp(textOf(a), textOf(b)) < 0; });
  Column arranged;
  std::vector<OdUInt32>& classes = arranged.firstOfClass;
  for (const OdUInt32 row : order) {
    if (classes.empty() || odStrICmp(textOf(classes.back()), textOf(row)) != 0) {
      classes.push_back(row);
    }
    different[textOf(row)] = static_cast<OdUInt32>(classes.size() - 1);
  }
  arranged.values.reserve(cells.rows());
  for (OdUInt32 row = 0; row < cells.rows(); ++row) {
    arranged.values.push_back(different.find(textOf(row))->second);
  }
  return arranged;
}

// The number that agreeing cells hold.
double VdmConfigurationMatch::soughtValue(const VdmConfigurationCells& cells,
                                          const VdmConfigurationRule& rule) const {
  const OdLong type = cells.columnTypes[rule.column];
  if (type == VdmConfigurationCells::kNumeric) return rule.number;
  if (type != VdmConfigurationCells::kString) return kNoClass;
  const std::vector<OdUInt32>& classes = m_columns[rule.column].firstOfClass;
  const auto textOf = [&](OdUInt32 row) -> const OdString& {
    return cells.texts[cells.rowStart(row) + rule.column];
  };
  const auto place = std::lower_bound(
      classes.begin(), classes.end(), *rule.text,
      [&](OdUInt32 row, const OdString& text) { return odStrICmp(textOf(row), text) < 0; });
  const bool isKnown = place != classes.end() && odStrICmp(textOf(*place), *rule.text) == 0;
  return isKnown ? static_cast<double>(place - classes.begin()) : kNoClass;
}

OdArray<unsigned> VdmConfigurationMatch::rowsThatFit(const VdmConfigurationCells& cells,
                                                     const std::vector<VdmConfigurationRule>& rules,
                                                     const std::optional<OdUInt32>& onlyRow) const {
  const OdUInt32 first = onlyRow.value_or(0);
  const OdUInt32 count = onlyRow ? 1 : cells.rows();
  std::vector<double> sought;
  for (const VdmConfigurationRule& rule : rules) sought.push_back(soughtValue(cells, rule));
  std::vector<OdInt64> disagreements(count, 0);
  for (OdUInt32 begin = 0; begin < count; begin += kBlock) {
    for (std::size_t i = 0; i < rules.size(); ++i) {
      const double* const values = m_columns[rules[i].column].values.data() + first + begin;
      countDisagreements(values, std::min(kBlock, count - begin), sought[i], boundFor(sought[i]),
                         rules[i].isRequired ? kOut : 1, disagreements.data() + begin);
    }
  }

  // Where the rows of each number of disagreements begin, then each row to its place.
  std::vector<OdUInt32> starts(rules.size() + 2, 0);
  for (const OdInt64 number : disagreements) {
    if (number < kOut) ++starts[static_cast<std::size_t>(number) + 1];
  }
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  OdArray<unsigned> fitting;
  fitting.resize(starts.back());
  unsigned* const places = fitting.asArrayPtr();
  for (OdUInt32 i = 0; i < count; ++i) {
    if (disagreements[i] >= kOut) continue;
    places[starts[static_cast<std::size_t>(disagreements[i])]++] = first + i;
  }
  return fitting;
}
