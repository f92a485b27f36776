// Rows computed by processes that may die of them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace batch {

struct PoolLimits {
  std::size_t jobs = 1;      ///< processes at a time, above 0
  double secondsPerRow = 0;  ///< of real time; 0 for no limit
};

struct PoolEvents {
  /// Called in each process before its first row; the result computes a row. What either raises
  /// ends the process.
  std::function<std::function<void(std::size_t row)>()> open;
  /// Called in this process: the row was computed.
  std::function<void(std::size_t row)> finished;
  /// Called in this process: the row cost a process its life. `why` has what it was at and what it
  /// died of.
  std::function<void(std::size_t row, const std::string& why)> died;
};

/// Computes the rows in an order in which neighbours share work: a process goes from row to row. A
/// row that kills a process, or does not end in time, costs that row alone. A crash in a process
/// that has computed other rows before may be their doing: the row gets another try in a new
/// process, and counts when it kills that one, too.
///
/// The signal that ended it early (interrupt, hang-up, termination), with all processes dead by
/// then; 0 when all rows were computed. To be called while the process has one thread.
[[nodiscard]] int computeRows(const std::vector<std::size_t>& order, const PoolLimits& limits,
                              const PoolEvents& events);

}  // namespace batch
