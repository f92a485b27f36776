// Work in a process of its own.
//
// The parent forks, waits and translates; all limits are set by the child and kept by the kernel,
// so that the parent has nothing to watch. The board lies in a shared anonymous mapping that both
// inherit: a child that dies at any instruction leaves its notes there, since they are plain writes
// to memory that only the child changes.
#include "host/supervision/supervised_run.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>

namespace supervision {

namespace {

constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP};
constexpr std::array kExpectedDeaths{SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT};

volatile std::sig_atomic_t g_child = 0;

// A terminal sends its signals to both processes; others reach the parent alone.
void passOn(int signal) {
  if (g_child > 0) kill(static_cast<pid_t>(g_child), signal);
}

/// The board in shared memory; null where there is none to be had.
OdWorkBoard* makeSharedBoard() {
  void* memory =
      mmap(nullptr, sizeof(OdWorkBoard), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return memory == MAP_FAILED ? nullptr : new (memory) OdWorkBoard;
}

[[noreturn]] void runChild(pid_t parent, OdWorkBoard* board, const std::function<int()>& work) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(EXIT_FAILURE);  // the parent died before that
  odInstallWorkBoard(board);
  std::set_new_handler(&odNoteOutOfMemory);
  std::exit(work());
}

int waitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
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
  if (child == 0) runChild(parent, board, work);
  g_child = child;
  for (const int signal : kEndingSignals) std::signal(signal, &passOn);
  const int status = waitFor(child);
  g_child = 0;
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  const int signal = WTERMSIG(status);
  if (std::ranges::find(kExpectedDeaths, signal) != kExpectedDeaths.end()) dieOf(signal);
  return report(odDescribeDeath(signal, *board));
}

}  // namespace supervision
