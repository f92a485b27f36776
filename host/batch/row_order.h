// The order in which rows are computed.
#pragma once

#include <string>
#include <vector>

namespace batch {

/// What one parameter is in each row.
struct RowColumn {
  std::vector<std::string> values;  ///< by row, compared as texts
  double weight = 1.0;              ///< work of a change, such as the number of its features
};

/// What the changes between neighbours weigh in an order of rows.
[[nodiscard]] double changesOf(const std::vector<RowColumn>& columns,
                               const std::vector<std::size_t>& order);

/// An order of rows in which neighbours differ little: that of the table, or one sorted by columns.
[[nodiscard]] std::vector<std::size_t> orderRows(const std::vector<RowColumn>& columns,
                                                 std::size_t numRows);

}  // namespace batch
