// The order in which rows are computed.
//
// The best order is a shortest path through all rows, which takes too long to find. Rows that
// are sorted column by column, back and forth, share all they can in the first columns: in a
// product of sweeps each step then changes one value, and which column comes first decides what is
// changed how often. Two rules for that are tried: the heaviest column first, which is best where
// all combinations occur, and the column with the fewest values first, which is best where most
// columns have a value of their own in each row. The table's own order is the third candidate. All
// three are weighed and the lightest one is taken. Costs a sort per rule.
#include "host/batch/row_order.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace batch {
namespace {

/// A column's values as numbers, in the order of their first appearance.
struct Ranks {
  std::vector<std::size_t> byRow;
  std::size_t numValues = 0;
  double weight = 1.0;
};

Ranks ranksOf(const RowColumn& column) {
  Ranks ranks;
  ranks.weight = column.weight;
  std::map<std::string, std::size_t> known;
  for (const std::string& value : column.values) {
    ranks.byRow.push_back(known.emplace(value, known.size()).first->second);
  }
  ranks.numValues = known.size();
  return ranks;
}

using Order = std::vector<std::size_t>;

double weigh(const std::vector<Ranks>& columns, const Order& order) {
  double sum = 0.0;
  for (const Ranks& column : columns) {
    for (std::size_t i = 1; i < order.size(); ++i) {
      if (column.byRow[order[i]] != column.byRow[order[i - 1]]) sum += column.weight;
    }
  }
  return sum;
}

/// Sorts by the columns from `depth` on; every other group of equal values runs backwards.
void sortBackAndForth(const std::vector<const Ranks*>& columns, std::size_t depth,
                      Order::iterator begin, Order::iterator end) {
  if (depth == columns.size() || end - begin < 2) return;
  const std::vector<std::size_t>& rank = columns[depth]->byRow;
  std::stable_sort(begin, end, [&](std::size_t a, std::size_t b) { return rank[a] < rank[b]; });
  bool isBackwards = false;
  while (begin != end) {
    const auto next =
        std::find_if(begin, end, [&](std::size_t row) { return rank[row] != rank[*begin]; });
    sortBackAndForth(columns, depth + 1, begin, next);
    if (isBackwards) std::reverse(begin, next);
    isBackwards = !isBackwards;
    begin = next;
  }
}

}  // namespace

double changesOf(const std::vector<RowColumn>& columns, const std::vector<std::size_t>& order) {
  std::vector<Ranks> ranks;
  for (const RowColumn& column : columns) ranks.push_back(ranksOf(column));
  return weigh(ranks, order);
}

std::vector<std::size_t> orderRows(const std::vector<RowColumn>& columns, std::size_t numRows) {
  std::vector<Ranks> all;
  for (const RowColumn& column : columns) all.push_back(ranksOf(column));
  Order best(numRows);
  std::iota(best.begin(), best.end(), std::size_t{0});
  double least = weigh(all, best);
  std::vector<const Ranks*> sorted;
  for (const Ranks& column : all) sorted.push_back(&column);
  using Rule = bool (*)(const Ranks*, const Ranks*);
  constexpr Rule kRules[] = {
      [](const Ranks* a, const Ranks* b) { return a->weight > b->weight; },
      [](const Ranks* a, const Ranks* b) { return a->numValues < b->numValues; },
  };
  for (const Rule rule : kRules) {
    std::ranges::stable_sort(sorted, rule);
    Order order(numRows);
    std::iota(order.begin(), order.end(), std::size_t{0});
    sortBackAndForth(sorted, 0, order.begin(), order.end());
    const double weight = weigh(all, order);
    if (weight >= least) continue;
    least = weight;
    best = std::move(order);
  }
  return best;
}

}  // namespace batch
