// Work in a process of its own: what kills it kills nothing else.
#pragma once

#include <functional>

#include "platform/base/work_death.h"

namespace supervision {

/// Runs `work` in a child process and returns its result, which the child ends with as its exit
/// code (0 to 255). When the child dies, `report` tells the user, and its result is returned.
///
/// The child shares open files with its parent, and notes on an OdWorkBoard what it is at. It does
/// not outlive its parent. Signals that ask a program to end (interrupt, hang-up, termination) end
/// both; the parent then dies of the signal, too, as its caller expects.
///
/// To be called once, before the process has a second thread. Where no process can be made the work
/// runs in this one. A child costs about a millisecond.
int runSupervised(const std::function<int()>& work,
                  const std::function<int(const OdWorkDeath&)>& report);

}  // namespace supervision
