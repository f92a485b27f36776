// OdRxClassRows: the run-time classes of one library, registered and released together.
#pragma once

#include <span>

#include "platform/base/export.h"

/// How one class is registered and released.
struct OdRxClassRow {
  void (*registerClass)();
  void (*releaseClass)();
};

template <class T>
constexpr OdRxClassRow odrxClassRow() {
  return {static_cast<void (*)()>(&T::rxInit), &T::rxUninit};
}

/// A table of rows, parents before their children, and a count of its users. The rows outlive it.
class OD_API OdRxClassRows {
 public:
  constexpr explicit OdRxClassRows(std::span<const OdRxClassRow> rows) : m_rows(rows) {}

  /// The first call registers all classes, or none when one raises. True when it registered them.
  bool start();
  /// The call that matches the first start() releases them, children first. True when it released
  /// them; a call without a start() does nothing.
  bool stop();

 private:
  std::span<const OdRxClassRow> m_rows;
  int m_starts = 0;
};
