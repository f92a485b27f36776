// Who computes which row.
#include "host/batch/row_queue.h"

#include <algorithm>

namespace batch {

RowQueue::RowQueue(std::vector<std::size_t> order, std::size_t numWorkers)
    : m_order(std::move(order)), m_pieces(numWorkers) {
  for (std::size_t i = 0; i < numWorkers; ++i) {
    m_pieces[i] = {m_order.size() * i / numWorkers, m_order.size() * (i + 1) / numWorkers};
  }
}

std::optional<std::size_t> RowQueue::take(std::size_t worker) {
  Piece& own = m_pieces[worker];
  if (own.size() == 0) {
    Piece& largest = *std::ranges::max_element(m_pieces, {}, &Piece::size);
    if (largest.size() == 0) return std::nullopt;
    const Piece half{largest.begin + largest.size() / 2, largest.end};
    largest.end = half.begin;
    own = half;
  }
  return m_order[own.begin++];
}

}  // namespace batch
