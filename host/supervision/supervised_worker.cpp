// A process that does one piece of work after the other. Children that are forked later inherit the
// parent's ends of earlier channels, so that a closed channel does not end a child: its parent's
// death does.
#include "host/supervision/supervised_worker.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "host/supervision/child_process.h"
#include "platform/base/error.h"

namespace supervision {

namespace {

constexpr int kParentAsks[] = {SIGINT, SIGTERM, SIGHUP};

/// One message; none at the end of the channel.
std::optional<std::uint64_t> receive(int channel) {
  std::uint64_t number = 0;
  ssize_t size = 0;
  while ((size = recv(channel, &number, sizeof(number), 0)) < 0 && errno == EINTR) {
  }
  if (size != static_cast<ssize_t>(sizeof(number))) return std::nullopt;
  return number;
}

void post(int channel, std::uint64_t number) {
  while (::send(channel, &number, sizeof(number), MSG_NOSIGNAL) < 0 && errno == EINTR) {
  }
}

}  // namespace

std::optional<std::uint64_t> SupervisedWorker::Requests::next() const { return receive(m_channel); }
void SupervisedWorker::Requests::answer(std::uint64_t number) const { post(m_channel, number); }

SupervisedWorker::SupervisedWorker(const std::function<void(const Requests&)>& work)
    : m_board(makeSharedBoard()) {
  int ends[2] = {-1, -1};
  const bool hasChannel = socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0;
  const pid_t parent = getpid();
  if (m_board != nullptr && hasChannel) m_child = fork();
  if (m_child == 0) {
    close(ends[0]);
    enterChild(parent, m_board);
    for (const int signal : kParentAsks) std::signal(signal, SIG_IGN);
    work(Requests(ends[1]));
    _exit(EXIT_SUCCESS);
  }
  if (hasChannel) close(ends[1]);
  m_channel = ends[0];
  if (m_child > 0) return;
  if (hasChannel) close(m_channel);
  releaseBoard(m_board);
  throw OdError(eOutOfMemory, L"no process for the work can be made");
}

SupervisedWorker::~SupervisedWorker() {
  if (m_child > 0) {
    kill();
    static_cast<void>(waitForChild(m_child));
  }
  close(m_channel);
  releaseBoard(m_board);
}

void SupervisedWorker::send(std::uint64_t number) const { post(m_channel, number); }
std::optional<std::uint64_t> SupervisedWorker::take() const { return receive(m_channel); }
void SupervisedWorker::kill() const { ::kill(m_child, SIGKILL); }

OdWorkDeath SupervisedWorker::wait() {
  const int status = waitForChild(m_child);
  m_child = -1;
  return odDescribeDeath(WIFSIGNALED(status) ? WTERMSIG(status) : 0, *m_board);
}

}  // namespace supervision
