#include "platform/modeler_wall/wall_worker.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "platform/base/error.h"

namespace od_wall {

namespace {

// ---- The worker

/// Faults end the worker at once, without the host's handlers and without a memory image.
void resetSignals() {
  for (int signal = 1; signal < NSIG; ++signal) std::signal(signal, SIG_DFL);
  // A terminal sends its interrupt to all processes; the host decides what it means.
  std::signal(SIGINT, SIG_IGN);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const rlimit noImage{0, 0};
  setrlimit(RLIMIT_CORE, &noImage);
}

[[noreturn]] void runWorker(Channel channel, OdWorkBoard* board, const MakeAnswer& makeAnswer) {
  odInstallWorkBoard(board);
  std::set_new_handler(&odNoteOutOfMemory);
  const Answer answer = makeAnswer();
  std::vector<char> request;
  while (channel.receiveMessage(request)) {
    if (!channel.sendMessage(answer(request))) break;
  }
  _exit(EXIT_SUCCESS);
}

// ---- The keeper

enum class Order : char { kStart, kBury };

class Keeper {
 public:
  Keeper(Channel channel, OdWorkBoard* board, const MakeAnswer& makeAnswer)
      : m_channel(std::move(channel)), m_board(board), m_makeAnswer(makeAnswer) {}

  [[noreturn]] void run() {
    Order order{};
    while (m_channel.receive(&order, sizeof order)) {
      const bool isDone = order == Order::kStart ? start() : bury();
      if (!isDone) break;
    }
    if (m_worker > 0) kill(m_worker, SIGKILL);
    _exit(EXIT_SUCCESS);
  }

 private:
  bool start() {
    auto ends = Channel::makePair();
    if (!ends) return false;
    const pid_t keeper = getpid();
    m_worker = fork();
    if (m_worker == 0) {
      ends->first.close();
      m_channel.close();
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (getppid() != keeper) _exit(EXIT_FAILURE);  // the keeper died before that
      runWorker(std::move(ends->second), m_board, m_makeAnswer);
    }
    return m_worker > 0 && m_channel.sendChannel(ends->first);
  }

  /// Sends how the worker ended, as waitpid() tells it.
  bool bury() {
    int status = 0;
    kill(m_worker, SIGKILL);  // it closed its channel or is late; a dead one stays as it is
    while (waitpid(m_worker, &status, 0) < 0 && errno == EINTR) {
    }
    m_worker = -1;
    return m_channel.send(&status, sizeof status);
  }

  Channel m_channel;
  OdWorkBoard* m_board;
  const MakeAnswer& m_makeAnswer;
  pid_t m_worker = -1;
};

/// Files and channels of the host stay the host's alone.
void closeAllBut(int kept) {
  constexpr int kFirst = STDERR_FILENO + 1;
  if (kept > kFirst) close_range(kFirst, static_cast<unsigned>(kept) - 1, 0);
  close_range(static_cast<unsigned>(kept) + 1, ~0U, 0);
}

[[noreturn]] void refuse(const std::string& what) {
  throw OdError(eModelerError, OdString::fromUtf8("the modeller's worker: " + what));
}

[[noreturn]] void refuseForSystem(const char* what) {
  refuse(std::string(what) + ": " + std::strerror(errno));
}

OdWorkDeath endOf(int status, const OdWorkBoard& board) {
  if (WIFSIGNALED(status)) return odDescribeDeath(WTERMSIG(status), board);
  OdWorkDeath death = odDescribeDeath(0, board);
  death.cause = "it ended by itself with code " + std::to_string(WEXITSTATUS(status));
  return death;
}

}  // namespace

SharedBoard::SharedBoard() {
  void* memory =
      mmap(nullptr, sizeof(OdWorkBoard), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) refuseForSystem("no shared memory");
  m_board = new (memory) OdWorkBoard;
}

SharedBoard::~SharedBoard() { munmap(m_board, sizeof(OdWorkBoard)); }

WallWorker::WallWorker(const MakeAnswer& makeAnswer) {
  auto ends = Channel::makePair();
  if (!ends) refuseForSystem("no channel");
  m_keeperId = fork();
  if (m_keeperId < 0) refuseForSystem("no process");
  if (m_keeperId == 0) {
    closeAllBut(ends->second.descriptor());
    resetSignals();
    Keeper(std::move(ends->second), m_board.get(), makeAnswer).run();
  }
  m_keeper = std::move(ends->first);
}

WallWorker::~WallWorker() { endKeeper(); }

/// Its worker ends with it.
void WallWorker::endKeeper() {
  m_channel.close();
  m_keeper.close();
  if (m_keeperId < 0) return;
  // It is no child of a process that was forked with this object in it.
  if (waitpid(m_keeperId, nullptr, WNOHANG) == 0) {
    kill(m_keeperId, SIGKILL);
    while (waitpid(m_keeperId, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  m_keeperId = -1;
}

/// What it sends later would be taken for the answer to another order.
void WallWorker::loseKeeper() {
  endKeeper();
  refuse("its keeper died or does not answer");
}

void WallWorker::startWorker(const Deadline& deadline) {
  *m_board.get() = {};
  const Order order = Order::kStart;
  if (!m_keeper.send(&order, sizeof order, &deadline)) loseKeeper();
  m_channel = m_keeper.receiveChannel(deadline);
  if (isNew()) loseKeeper();
}

OdWorkDeath WallWorker::buryWorker() {
  m_channel.close();
  // Killing a process is quick; one that holds much memory takes a second or two.
  const Deadline deadline(std::chrono::seconds(20));
  const Order order = Order::kBury;
  int status = 0;
  if (!m_keeper.send(&order, sizeof order, &deadline) ||
      !m_keeper.receive(&status, sizeof status, &deadline)) {
    loseKeeper();
  }
  return endOf(status, *m_board.get());
}

void WallWorker::end() {
  if (!isNew()) (void)buryWorker();
}

WallWorker::Reply WallWorker::ask(std::span<const char> request, unsigned seconds) {
  const Deadline deadline{std::chrono::seconds(seconds)};
  if (isNew()) startWorker(deadline);
  Reply reply;
  if (m_channel.sendMessage(request, &deadline) &&
      m_channel.receiveMessage(reply.answer, &deadline)) {
    return reply;
  }
  const bool isLate = deadline.isOver();
  reply.answer.clear();
  reply.death = buryWorker();
  if (isLate) reply.death.cause = "it did not end within " + std::to_string(seconds) + " s";
  reply.died = true;
  reply.idle = !isLate && m_board->count == 0;
  return reply;
}

}  // namespace od_wall
