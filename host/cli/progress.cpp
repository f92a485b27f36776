// A sign of life on standard error while something takes long.
#include "host/cli/progress.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "host/cli/text_output.h"

namespace cli {

namespace {

using Seconds = std::chrono::seconds;

void showUntilStopped(const std::stop_token& stop, const std::string& what) {
  std::mutex mutex;
  std::condition_variable_any wake;
  std::unique_lock lock(mutex);
  bool shown = false;
  for (long elapsed = 1;; ++elapsed) {
    if (wake.wait_for(lock, stop, Seconds(1), [&stop] { return stop.stop_requested(); })) break;
    const std::string line = shortened(what, kTextWidth - 20);
    std::fprintf(stderr, "\r%s ... %ld s", line.c_str(), elapsed);
    std::fflush(stderr);
    shown = true;
  }
  if (shown) std::fputs("\r\x1b[K", stderr);
}

}  // namespace

Progress::Progress(const std::string& what) {
  if (isatty(STDERR_FILENO) == 0) return;
  m_thread = std::jthread(
      [text = oneLine(what)](const std::stop_token& stop) { showUntilStopped(stop, text); });
}

Progress::~Progress() = default;

}  // namespace cli
