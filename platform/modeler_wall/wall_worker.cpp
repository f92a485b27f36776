#include "platform/modeler_wall/wall_worker.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <new>

#include "platform/base/error.h"

namespace od_wall {

namespace {

// ---- Channels

/// A time by which something is to be over; left() counts the milliseconds until then, 0 at last.
class Deadline {
 public:
  explicit Deadline(unsigned seconds)
      : m_end(std::chrono::steady_clock::now() + std::chrono::seconds(seconds)) {}
  [[nodiscard]] int left() const {
    using std::chrono::milliseconds;
    const auto left = std::chrono::duration_cast<milliseconds>(m_end - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 1'000'000'000));
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point m_end;
};

bool sendAll(int channel, const void* data, std::size_t size) {
  const char* begin = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t sent = send(channel, begin, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    begin += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

bool waitToRead(int channel, const Deadline* deadline) {
  if (deadline == nullptr) return true;
  pollfd entry{channel, POLLIN, 0};
  int ready = 0;
  do {
    ready = poll(&entry, 1, deadline->left());
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

/// False at the end of the channel, and when the time is over.
bool receiveAll(int channel, void* data, std::size_t size, const Deadline* deadline = nullptr) {
  char* begin = static_cast<char*>(data);
  while (size > 0) {
    if (!waitToRead(channel, deadline)) return false;
    const ssize_t count = recv(channel, begin, size, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    begin += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

/// A message is its length in eight bytes, and its bytes.
bool sendMessage(int channel, std::span<const char> message) {
  const std::uint64_t size = message.size();
  return sendAll(channel, &size, sizeof size) && sendAll(channel, message.data(), size);
}

bool receiveMessage(int channel, std::vector<char>& message, const Deadline* deadline = nullptr) {
  std::uint64_t size = 0;
  if (!receiveAll(channel, &size, sizeof size, deadline)) return false;
  // A worker whose memory was spoilt may announce anything.
  constexpr std::uint64_t kLargest = std::uint64_t{1} << 34U;
  if (size > kLargest) return false;
  message.resize(size);
  return receiveAll(channel, message.data(), size, deadline);
}

bool sendDescriptor(int channel, int descriptor) {
  char byte = 0;
  iovec part{&byte, 1};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof descriptor)> control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  cmsghdr* head = CMSG_FIRSTHDR(&message);
  head->cmsg_level = SOL_SOCKET;
  head->cmsg_type = SCM_RIGHTS;
  head->cmsg_len = CMSG_LEN(sizeof descriptor);
  std::memcpy(CMSG_DATA(head), &descriptor, sizeof descriptor);
  return sendmsg(channel, &message, MSG_NOSIGNAL) == 1;
}

/// -1 when none came.
int receiveDescriptor(int channel) {
  char byte = 0;
  iovec part{&byte, 1};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  ssize_t count = 0;
  do {
    count = recvmsg(channel, &message, MSG_CMSG_CLOEXEC);
  } while (count < 0 && errno == EINTR);
  const cmsghdr* head = count == 1 ? CMSG_FIRSTHDR(&message) : nullptr;
  if (head == nullptr || head->cmsg_type != SCM_RIGHTS) return -1;
  int descriptor = -1;
  std::memcpy(&descriptor, CMSG_DATA(head), sizeof descriptor);
  return descriptor;
}

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

[[noreturn]] void runWorker(int channel, OdWorkBoard* board, const MakeAnswer& makeAnswer) {
  odInstallWorkBoard(board);
  std::set_new_handler(&odNoteOutOfMemory);
  const Answer answer = makeAnswer();
  std::vector<char> request;
  while (receiveMessage(channel, request)) {
    if (!sendMessage(channel, answer(request))) break;
  }
  _exit(EXIT_SUCCESS);
}

// ---- The keeper

enum class Order : char { kStart, kBury };

class Keeper {
 public:
  Keeper(int channel, OdWorkBoard* board, const MakeAnswer& makeAnswer)
      : m_channel(channel), m_board(board), m_makeAnswer(makeAnswer) {}

  [[noreturn]] void run() {
    Order order{};
    while (receiveAll(m_channel, &order, sizeof order)) {
      const bool isDone = order == Order::kStart ? start() : bury();
      if (!isDone) break;
    }
    if (m_worker > 0) kill(m_worker, SIGKILL);
    _exit(EXIT_SUCCESS);
  }

 private:
  bool start() {
    std::array<int, 2> ends{-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
    const pid_t keeper = getpid();
    m_worker = fork();
    if (m_worker == 0) {
      close(ends[0]);
      close(m_channel);
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (getppid() != keeper) _exit(EXIT_FAILURE);  // the keeper died before that
      runWorker(ends[1], m_board, m_makeAnswer);
    }
    close(ends[1]);
    const bool isSent = m_worker > 0 && sendDescriptor(m_channel, ends[0]);
    close(ends[0]);
    return isSent;
  }

  /// Sends how the worker ended, as waitpid() tells it.
  bool bury() {
    int status = 0;
    kill(m_worker, SIGKILL);  // it closed its channel or is late; a dead one stays as it is
    while (waitpid(m_worker, &status, 0) < 0 && errno == EINTR) {
    }
    m_worker = -1;
    return sendAll(m_channel, &status, sizeof status);
  }

  int m_channel;
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

[[noreturn]] void noProcess(const char* what) {
  OdString text = OdString::fromUtf8(std::string("the modeller's worker: ") + what + ": " +
                                     std::strerror(errno));
  throw OdError(eModelerError, text);
}

OdWorkDeath endOf(int status, const OdWorkBoard& board) {
  if (WIFSIGNALED(status)) return odDescribeDeath(WTERMSIG(status), board);
  OdWorkDeath death = odDescribeDeath(0, board);
  death.cause = "it ended by itself with code " + std::to_string(WEXITSTATUS(status));
  return death;
}

}  // namespace

WallWorker::WallWorker(const MakeAnswer& makeAnswer) {
  void* memory =
      mmap(nullptr, sizeof(OdWorkBoard), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) noProcess("no shared memory");
  m_board = new (memory) OdWorkBoard;
  std::array<int, 2> ends{-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) noProcess("no channel");
  m_keeperId = fork();
  if (m_keeperId < 0) noProcess("no process");
  if (m_keeperId == 0) {
    closeAllBut(ends[1]);
    resetSignals();
    Keeper(ends[1], m_board, makeAnswer).run();
  }
  close(ends[1]);
  m_keeper = ends[0];
}

WallWorker::~WallWorker() {
  if (m_channel >= 0) close(m_channel);
  close(m_keeper);
  while (waitpid(m_keeperId, nullptr, 0) < 0 && errno == EINTR) {
  }
  munmap(m_board, sizeof(OdWorkBoard));
}

void WallWorker::startWorker() {
  *m_board = {};
  const Order order = Order::kStart;
  if (!sendAll(m_keeper, &order, sizeof order)) noProcess("its keeper died");
  m_channel = receiveDescriptor(m_keeper);
  if (m_channel < 0) noProcess("no process");
}

OdWorkDeath WallWorker::buryWorker() {
  close(m_channel);
  m_channel = -1;
  const Order order = Order::kBury;
  int status = 0;
  if (!sendAll(m_keeper, &order, sizeof order) || !receiveAll(m_keeper, &status, sizeof status)) {
    noProcess("its keeper died");
  }
  return endOf(status, *m_board);
}

void WallWorker::end() {
  if (m_channel >= 0) (void)buryWorker();
}

bool WallWorker::askOnce(std::span<const char> request, unsigned seconds,
                         std::vector<char>& answer) const {
  const Deadline deadline(seconds);
  return sendMessage(m_channel, request) && receiveMessage(m_channel, answer, &deadline);
}

WallWorker::Reply WallWorker::ask(std::span<const char> request, unsigned seconds) {
  if (isNew()) startWorker();
  Reply reply;
  const auto began = std::chrono::steady_clock::now();
  if (askOnce(request, seconds, reply.answer)) return reply;
  reply.answer.clear();
  reply.death = buryWorker();
  const bool isLate = std::chrono::steady_clock::now() - began >= std::chrono::seconds(seconds);
  if (isLate) reply.death.cause = "it did not end within " + std::to_string(seconds) + " s";
  reply.died = true;
  reply.idle = !isLate && m_board->count == 0;
  return reply;
}

}  // namespace od_wall
