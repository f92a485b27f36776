// Processor time of the calling thread: what a neighbour on the machine does is left out.
#pragma once

#include <ctime>

namespace naming_bench {

class Stopwatch {
 public:
  /// Since construction.
  [[nodiscard]] double seconds() const { return now() - m_begin; }

 private:
  static double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  }
  double m_begin = now();
};

}  // namespace naming_bench
