// Channels between a host, the keeper of its workers, and a worker.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace od_wall {

/// A time by which something is to be over.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds time) : m_end(Clock::now() + time) {}
  /// Milliseconds until then, 0 at last.
  [[nodiscard]] int left() const;
  [[nodiscard]] bool isOver() const { return left() == 0; }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point m_end;
};

/// One end of a stream between two processes; owned, closed with the object.
///
/// Every call takes the time by which it is to be over; without one it waits for ever. A call that
/// is late, or whose peer closed its end, returns false or none, and the stream is then of no use:
/// a part of a message may have passed.
class Channel {
 public:
  Channel() = default;
  explicit Channel(int descriptor) : m_descriptor(descriptor) {}
  Channel(Channel&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  Channel& operator=(Channel&& other) noexcept;
  ~Channel() { close(); }

  /// Both ends of a new stream; none, with errno, when the system has none to give.
  [[nodiscard]] static std::optional<std::pair<Channel, Channel>> makePair();

  [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
  [[nodiscard]] int descriptor() const { return m_descriptor; }
  void close();

  [[nodiscard]] bool send(const void* data, std::size_t size, const Deadline* deadline = nullptr);
  [[nodiscard]] bool receive(void* data, std::size_t size, const Deadline* deadline = nullptr);

  /// A message is its length in eight bytes, and its bytes.
  [[nodiscard]] bool sendMessage(std::span<const char> message, const Deadline* deadline = nullptr);
  [[nodiscard]] bool receiveMessage(std::vector<char>& message, const Deadline* deadline = nullptr);

  /// Hands the other process a copy of one more end.
  [[nodiscard]] bool sendChannel(const Channel& channel);
  /// A closed one when none came.
  [[nodiscard]] Channel receiveChannel(const Deadline& deadline);

 private:
  [[nodiscard]] bool waitFor(short events, const Deadline* deadline) const;

  int m_descriptor = -1;
};

}  // namespace od_wall
