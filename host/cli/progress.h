// A sign of life on standard error while something takes long.
#pragma once

#include <string>
#include <thread>

namespace cli {

/// Shows "<what> ... <seconds> s" on one line, from the first second on and only on a terminal;
/// the destructor wipes the line. Runs a thread of its own, which touches nothing else.
class Progress {
 public:
  explicit Progress(const std::string& what);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  std::jthread m_thread;
};

}  // namespace cli
