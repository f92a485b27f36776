// Work in a process of its own: what kills it kills nothing else.
#pragma once

#include <functional>
#include <string>

#include "platform/base/work_note.h"

namespace supervision {

/// What a supervised process died of, and what it was at.
struct Death {
  int signal = 0;         ///< 0 when the process ended by itself
  std::string operation;  ///< its open notes, outermost first, joined by ": "; may be empty
  std::string cause;      ///< such as "it crashed (segmentation fault)"
  bool written = false;   ///< it had written a file before
};

/// Runs `work` in a child process and returns its result, which the child ends with as its exit
/// code (0 to 255). When the child dies, `report` tells the user, and its result is returned.
///
/// The child shares open files with its parent, and notes on an OdWorkBoard what it is at. It does
/// not outlive its parent. Signals that ask a program to end (interrupt, hang-up, termination) end
/// both; the parent then dies of the signal, too, as its caller expects.
///
/// To be called once, before the process has a second thread. Where no process can be made the work
/// runs in this one. A child costs about a millisecond.
int runSupervised(const std::function<int()>& work, const std::function<int(const Death&)>& report);

/// The notes of a board as one line, and what the signal means under the board's limits.
[[nodiscard]] Death describeDeath(int signal, const OdWorkBoard& board);

}  // namespace supervision
