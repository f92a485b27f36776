// The run-time classes of one library.
#include "platform/rx/class_rows.h"

#include <cstddef>

namespace {

void releaseFirst(std::span<const OdRxClassRow> rows, std::size_t count) {
  while (count > 0) rows[--count].releaseClass();
}

}  // namespace

bool OdRxClassRows::start() {
  if (m_starts > 0) {
    ++m_starts;
    return false;
  }
  std::size_t registered = 0;
  try {
    for (; registered < m_rows.size(); ++registered) m_rows[registered].registerClass();
  } catch (...) {
    releaseFirst(m_rows, registered);
    throw;
  }
  m_starts = 1;
  return true;
}

bool OdRxClassRows::stop() {
  if (m_starts == 0 || --m_starts > 0) return false;
  releaseFirst(m_rows, m_rows.size());
  return true;
}
