// A process that does one piece of work after the other for its parent.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/base/non_copyable.h"
#include "platform/base/work_death.h"

namespace supervision {

/// A child process and the channel to it, over which both send numbers. The child notes on an
/// OdWorkBoard what it is at. Signals that ask a program to end (interrupt, hang-up, termination)
/// are for the parent to answer: the child ignores them, and dies with its parent.
///
/// To be made while the process has one thread. The destructor kills the child.
class SupervisedWorker : OdNonCopyable {
 public:
  /// The child's end of the channel.
  class Requests {
   public:
    explicit Requests(int channel) : m_channel(channel) {}
    /// The next number that the parent sent; none once the parent wants no more.
    [[nodiscard]] std::optional<std::uint64_t> next() const;
    void answer(std::uint64_t number) const;

   private:
    int m_channel;
  };

  /// Forks, and runs `work` in the child, which ends when it returns. Raises OdError eOutOfMemory
  /// where no process can be made.
  explicit SupervisedWorker(const std::function<void(const Requests&)>& work);
  ~SupervisedWorker();

  /// Sends a number. Nothing happens when the child is dead: take() says so.
  void send(std::uint64_t number) const;
  /// Readable (poll) once there is an answer, or the child has ended.
  [[nodiscard]] int channel() const { return m_channel; }
  /// An answer; none when the child has ended. Waits for one of both.
  [[nodiscard]] std::optional<std::uint64_t> take() const;

  /// Ends the child in the middle of what it does.
  void kill() const;
  /// Waits for the end of the child and says what it died of; `signal` is 0 when it ended by
  /// itself. To be called once.
  [[nodiscard]] OdWorkDeath wait();

 private:
  OdWorkBoard* m_board = nullptr;
  pid_t m_child = -1;
  int m_channel = -1;
};

}  // namespace supervision
