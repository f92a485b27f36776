// Who computes which row.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace batch {

/// Hands out rows in an order in which neighbours share work. Each worker has a piece of the order;
/// one whose piece is done takes the second half of the largest piece that is left.
class RowQueue {
 public:
  RowQueue(std::vector<std::size_t> order, std::size_t numWorkers);

  [[nodiscard]] std::optional<std::size_t> take(std::size_t worker);

 private:
  struct Piece {
    std::size_t begin = 0;
    std::size_t end = 0;
    [[nodiscard]] std::size_t size() const { return end - begin; }
  };

  std::vector<std::size_t> m_order;
  std::vector<Piece> m_pieces;  // by worker
};

}  // namespace batch
