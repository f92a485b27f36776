// Work in a process of its own.
//
// The parent forks, waits and translates; all limits are set by the child and kept by the kernel,
// so that the parent has nothing to watch.
#include "host/supervision/supervised_run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>

#include "host/supervision/child_process.h"

namespace supervision {

namespace {

constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP};
constexpr std::array kExpectedDeaths{SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT};

volatile std::sig_atomic_t g_child = 0;

// A terminal sends its signals to both processes; others reach the parent alone.
void passOn(int signal) {
  if (g_child > 0) kill(static_cast<pid_t>(g_child), signal);
}

void dieOf(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

int runSupervised(const std::function<int()>& work,
                  const std::function<int(const OdWorkDeath&)>& report) {
  OdWorkBoard* board = makeSharedBoard();
  if (board == nullptr) return work();
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) return work();
  if (child == 0) {
    enterChild(parent, board);
    std::exit(work());
  }
  g_child = child;
  for (const int signal : kEndingSignals) std::signal(signal, &passOn);
  const int status = waitForChild(child);
  g_child = 0;
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  const int signal = WTERMSIG(status);
  if (std::ranges::find(kExpectedDeaths, signal) != kExpectedDeaths.end()) dieOf(signal);
  return report(odDescribeDeath(signal, *board));
}

}  // namespace supervision
