// Every transfer waits in poll(), which knows the deadline, and then moves what can be moved at
// once. So a peer that is stopped holds up neither a reader nor a writer whose stream is full.
#include "platform/modeler_wall/wall_channel.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace od_wall {

int Deadline::left() const {
  using std::chrono::milliseconds;
  const auto left = std::chrono::ceil<milliseconds>(m_end - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, 1'000'000'000));
}

// ---- Ends

Channel& Channel::operator=(Channel&& other) noexcept {
  if (this == &other) return *this;
  close();
  m_descriptor = std::exchange(other.m_descriptor, -1);
  return *this;
}

std::optional<std::pair<Channel, Channel>> Channel::makePair() {
  std::array<int, 2> ends{-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return {};
  return std::pair(Channel(ends[0]), Channel(ends[1]));
}

void Channel::close() {
  if (m_descriptor >= 0) ::close(m_descriptor);
  m_descriptor = -1;
}

// ---- Bytes

bool Channel::waitFor(short events, const Deadline* deadline) const {
  if (!isOpen()) return false;
  pollfd entry{m_descriptor, events, 0};
  int ready = 0;
  do {
    // Also a peer that always has something to move must end in time.
    if (deadline != nullptr && deadline->isOver()) return false;
    ready = poll(&entry, 1, deadline != nullptr ? deadline->left() : -1);
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

namespace {

/// Nothing was moved, and the next attempt may move something.
bool isPassing(ssize_t moved) {
  return moved < 0 && (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK);
}

}  // namespace

bool Channel::send(const void* data, std::size_t size, const Deadline* deadline) {
  const char* begin = static_cast<const char*>(data);
  while (size > 0) {
    if (!waitFor(POLLOUT, deadline)) return false;
    const ssize_t moved = ::send(m_descriptor, begin, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (isPassing(moved)) continue;
    if (moved <= 0) return false;
    begin += moved;
    size -= static_cast<std::size_t>(moved);
  }
  return true;
}

bool Channel::receive(void* data, std::size_t size, const Deadline* deadline) {
  char* begin = static_cast<char*>(data);
  while (size > 0) {
    if (!waitFor(POLLIN, deadline)) return false;
    const ssize_t moved = recv(m_descriptor, begin, size, MSG_DONTWAIT);
    if (isPassing(moved)) continue;
    if (moved <= 0) return false;
    begin += moved;
    size -= static_cast<std::size_t>(moved);
  }
  return true;
}

// ---- Messages

bool Channel::sendMessage(std::span<const char> message, const Deadline* deadline) {
  const std::uint64_t size = message.size();
  return send(&size, sizeof size, deadline) && send(message.data(), message.size(), deadline);
}

bool Channel::receiveMessage(std::vector<char>& message, const Deadline* deadline) {
  std::uint64_t left = 0;
  if (!receive(&left, sizeof left, deadline)) return false;
  message.clear();
  // A worker whose memory was spoilt may announce anything: room is made for what comes.
  constexpr std::uint64_t kPiece = std::uint64_t{1} << 24U;
  while (left > 0) {
    const std::size_t size = std::min(left, kPiece);
    message.resize(message.size() + size);
    if (!receive(message.data() + message.size() - size, size, deadline)) return false;
    left -= size;
  }
  return true;
}

// ---- Ends, handed over

bool Channel::sendChannel(const Channel& channel) {
  char byte = 0;
  iovec part{&byte, 1};
  const int descriptor = channel.descriptor();
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
  return sendmsg(m_descriptor, &message, MSG_NOSIGNAL) == 1;
}

Channel Channel::receiveChannel(const Deadline& deadline) {
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
    if (!waitFor(POLLIN, &deadline)) return {};
    count = recvmsg(m_descriptor, &message, MSG_CMSG_CLOEXEC | MSG_DONTWAIT);
  } while (isPassing(count));
  const cmsghdr* head = count == 1 ? CMSG_FIRSTHDR(&message) : nullptr;
  if (head == nullptr || head->cmsg_type != SCM_RIGHTS) return {};
  int descriptor = -1;
  std::memcpy(&descriptor, CMSG_DATA(head), sizeof descriptor);
  return Channel(descriptor);
}

}  // namespace od_wall
