// A sign of life on standard error while something takes long.
#pragma once

#include <string>
#include <thread>

#include "platform/base/non_copyable.h"

namespace cli {

/// Shows "<what> ... <seconds> s" on one line, from the first second on and only on a terminal;
/// the destructor wipes the line. Runs a thread of its own, which touches nothing else.
class Progress : OdNonCopyable {
 public:
  explicit Progress(const std::string& what);
  ~Progress();

 private:
  std::jthread m_thread;
};

}  // namespace cli
