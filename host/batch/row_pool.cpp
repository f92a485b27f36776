// Rows computed by processes that may die of them: one loop that waits for answers, deaths and
// deadlines.
#include "host/batch/row_pool.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include "host/batch/row_queue.h"
#include "host/supervision/supervised_worker.h"

namespace batch {
namespace {

using Clock = std::chrono::steady_clock;
using supervision::SupervisedWorker;

volatile std::sig_atomic_t g_interrupted = 0;

/// Notes the signals that ask the program to end, for its life.
class InterruptWatch : OdNonCopyable {
 public:
  InterruptWatch() {
    g_interrupted = 0;
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
      m_before[i] = std::signal(kSignals[i], [](int signal) { g_interrupted = signal; });
    }
  }
  ~InterruptWatch() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i) std::signal(kSignals[i], m_before[i]);
  }

 private:
  using Handler = void (*)(int);
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  Handler m_before[std::size(kSignals)] = {};
};

/// A process and the row that it is at.
struct Slot {
  std::unique_ptr<SupervisedWorker> worker;
  std::optional<std::size_t> row;
  Clock::time_point deadline = Clock::time_point::max();
  bool isFresh = true;  ///< it has computed no other row
  bool isLate = false;  ///< it was killed for its time
};

/// What is raised becomes a note, and the process ends with it.
void serve(const SupervisedWorker::Requests& requests, const PoolEvents& events) {
  try {
    const auto compute = events.open();
    while (const auto row = requests.next()) {
      compute(*row);
      requests.answer(*row);
    }
  } catch (const std::exception& error) {
    const OdWorkNote note(error.what());
    _exit(EXIT_FAILURE);
  }
}

class Pool {
 public:
  Pool(const std::vector<std::size_t>& order, const PoolLimits& limits, const PoolEvents& events)
      : m_queue(order, limits.jobs), m_limits(limits), m_events(events), m_slots(limits.jobs) {}

  int run() {
    const InterruptWatch watch;
    for (std::size_t i = 0; i < m_slots.size(); ++i) giveNext(i);
    while (g_interrupted == 0 && isAnyBusy()) {
      waitForAnswers();
      endLateOnes();
    }
    return g_interrupted;
  }

 private:
  void giveNext(std::size_t index) {
    m_slots[index].row = m_queue.take(index);
    if (m_slots[index].row) begin(m_slots[index]);
  }

  void begin(Slot& slot) {
    if (!slot.worker) {
      slot.worker = std::make_unique<SupervisedWorker>(
          [this](const SupervisedWorker::Requests& requests) { serve(requests, m_events); });
      slot.isFresh = true;
      slot.isLate = false;
    }
    if (m_limits.secondsPerRow > 0) {
      slot.deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                         std::chrono::duration<double>(m_limits.secondsPerRow));
    }
    slot.worker->send(*slot.row);
  }

  [[nodiscard]] bool isAnyBusy() const {
    return std::ranges::any_of(m_slots, [](const Slot& slot) { return slot.row.has_value(); });
  }

  /// Until the next deadline, and never long: a signal between two waits is seen after one.
  [[nodiscard]] int millisecondsToWait() const {
    using Milliseconds = std::chrono::milliseconds;
    constexpr Milliseconds kLongest{200};
    constexpr Milliseconds kShortest{1};
    const Clock::time_point now = Clock::now();
    Clock::time_point next = now + kLongest;
    for (const Slot& slot : m_slots) {
      if (slot.row && !slot.isLate) next = std::min(next, slot.deadline);
    }
    const auto wait = std::chrono::ceil<Milliseconds>(next - now);
    return static_cast<int>(std::max(wait, kShortest).count());
  }

  void waitForAnswers() {
    std::vector<pollfd> waits;
    std::vector<std::size_t> slots;
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
      if (!m_slots[i].row) continue;
      waits.push_back({m_slots[i].worker->channel(), POLLIN, 0});
      slots.push_back(i);
    }
    if (poll(waits.data(), waits.size(), millisecondsToWait()) <= 0) return;
    for (std::size_t i = 0; i < waits.size() && g_interrupted == 0; ++i) {
      if (waits[i].revents != 0) takeAnswer(slots[i]);
    }
  }

  void takeAnswer(std::size_t index) {
    Slot& slot = m_slots[index];
    if (!slot.worker->take()) return bury(index);
    slot.isFresh = false;
    m_events.finished(*slot.row);
    giveNext(index);
  }

  void bury(std::size_t index) {
    Slot& slot = m_slots[index];
    const OdWorkDeath death = slot.worker->wait();
    slot.worker.reset();
    if (!slot.isFresh && !slot.isLate) return begin(slot);  // another try
    m_events.died(*slot.row, reasonOf(slot, death));
    giveNext(index);
  }

  [[nodiscard]] std::string reasonOf(const Slot& slot, const OdWorkDeath& death) const {
    std::string cause = death.signal == 0 ? "its process ended early" : death.cause;
    if (slot.isLate) {
      char text[64];
      std::snprintf(text, sizeof(text), "it did not end within %g s", m_limits.secondsPerRow);
      cause = text;
    }
    return death.operation.empty() ? cause : death.operation + ": " + cause;
  }

  void endLateOnes() {
    const Clock::time_point now = Clock::now();
    for (Slot& slot : m_slots) {
      if (!slot.row || slot.isLate || now < slot.deadline) continue;
      slot.isLate = true;
      slot.worker->kill();
    }
  }

  RowQueue m_queue;
  const PoolLimits m_limits;
  const PoolEvents& m_events;
  std::vector<Slot> m_slots;
};

}  // namespace

int computeRows(const std::vector<std::size_t>& order, const PoolLimits& limits,
                const PoolEvents& events) {
  return Pool(order, limits, events).run();
}

}  // namespace batch
