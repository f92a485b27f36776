// The worker process of a wall, and its renewal.
#pragma once

#include <sys/types.h>

#include <functional>
#include <span>
#include <vector>

#include "platform/base/non_copyable.h"
#include "platform/base/work_death.h"
#include "platform/modeler_wall/wall_channel.h"

namespace od_wall {

/// Answers one request; runs in the worker.
using Answer = std::function<std::vector<char>(std::span<const char>)>;
/// Makes the answering function of a new worker; runs in the worker.
using MakeAnswer = std::function<Answer()>;

/// A work board in memory that processes forked from here on share. Raises OdError eModelerError
/// when there is none to be had.
class SharedBoard : OdNonCopyable {
 public:
  SharedBoard();
  ~SharedBoard();
  [[nodiscard]] OdWorkBoard* get() const { return m_board; }
  OdWorkBoard* operator->() const { return m_board; }

 private:
  OdWorkBoard* m_board;
};

/// A worker that answers requests one by one, kept warm between them.
///
/// Two processes belong to it. The keeper is forked once, when the host has a single thread, and
/// stays as it was then: it only waits for orders, forks a worker when asked, and tells what the
/// worker died of. So a new worker is a copy of the host at that time whatever the host's threads
/// hold by then. Each worker has a channel of its own: what a dying one has half written cannot be
/// taken for an answer of the next. Both end when the host does, since their channels close.
///
/// Nothing here waits without end, whether a worker or the keeper is dead, busy or stopped.
class WallWorker : OdNonCopyable {
 public:
  /// Raises OdError eModelerError when there are no processes or channels to be had.
  explicit WallWorker(const MakeAnswer& makeAnswer);
  ~WallWorker();

  /// True when the next request would be the first one of its worker.
  [[nodiscard]] bool isNew() const { return !m_channel.isOpen(); }

  struct Reply {
    bool died = false;
    bool idle = false;         ///< it had died before it took the request up
    OdWorkDeath death;         ///< when it died
    std::vector<char> answer;  ///< when it did not
  };
  /// Sends a request and waits for its answer: a worker that has taken longer than `seconds` of the
  /// clock by then, whether to take the request or to answer it, is killed. Starts a worker when
  /// there is none. Raises OdError eModelerError when there is none to be had.
  [[nodiscard]] Reply ask(std::span<const char> request, unsigned seconds);
  /// Ends the worker; the next request gets a new one.
  void end();

 private:
  void startWorker(const Deadline& deadline);
  [[nodiscard]] OdWorkDeath buryWorker();
  [[noreturn]] void loseKeeper();
  void endKeeper();

  SharedBoard m_board;  ///< shared with keeper and worker
  Channel m_keeper;
  Channel m_channel;  ///< to the worker; closed when there is none
  pid_t m_keeperId = -1;
};

}  // namespace od_wall
