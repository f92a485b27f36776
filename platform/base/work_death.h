// What a supervised process died of.
#pragma once

#include <string>

#include "platform/base/work_note.h"

/// What ended a process, and what it was at.
struct OdWorkDeath {
  int signal = 0;         ///< 0 when the process ended by itself
  std::string operation;  ///< its open notes, outermost first, joined by ": ", repetitions
                          ///< left out; may be empty
  std::string cause;      ///< such as "it crashed (segmentation fault)"
  bool written = false;   ///< it had written a file before
};

/// The notes of a board as one line, and what the signal means under the board's limits.
[[nodiscard]] OD_API OdWorkDeath odDescribeDeath(int signal, const OdWorkBoard& board);

/// A new handler (std::set_new_handler) that enters a failed allocation in the board of the thread
/// before it raises std::bad_alloc.
[[noreturn]] OD_API void odNoteOutOfMemory();
