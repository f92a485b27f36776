// Tests of processes that compute rows and die of some.
#include "host/batch/row_pool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <memory>
#include <numeric>
#include <set>
#include <stdexcept>

#include "platform/base/work_note.h"

namespace {

using Work = std::function<void(std::size_t row, bool isFirst)>;

/// What came of 20 rows. `work` runs in other processes.
struct Outcome {
  std::set<std::size_t> finished;
  std::map<std::size_t, std::string> died;
  int signal = 0;
};
Outcome compute(const Work& work, const batch::PoolLimits& limits,
                const std::function<void()>& whenFinished = {}) {
  Outcome outcome;
  batch::PoolEvents events;
  events.open = [&] {
    return [&work, isFirst = std::make_shared<bool>(true)](std::size_t row) {
      work(row, *isFirst);
      *isFirst = false;
    };
  };
  events.finished = [&](std::size_t row) {
    EXPECT_TRUE(outcome.finished.insert(row).second);
    if (whenFinished) whenFinished();
  };
  events.died = [&](std::size_t row, const std::string& why) {
    EXPECT_TRUE(outcome.died.emplace(row, why).second);
  };
  std::vector<std::size_t> rows(20);
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  outcome.signal = batch::computeRows(rows, limits, events);
  return outcome;
}

TEST(RowPool, ARowThatKillsOrHangsCostsItselfAlone) {
  const Outcome outcome = compute(
      [](std::size_t row, bool) {
        const OdWorkNote note("row ", std::to_string(row));
        if (row == 3) std::raise(SIGKILL);
        if (row == 9) throw std::runtime_error("the disk is full");
        if (row == 14) pause();
        if (row == 19) _exit(0);
      },
      {.jobs = 3, .secondsPerRow = 1.0});
  EXPECT_EQ(outcome.finished.size(), 16U);
  EXPECT_EQ(outcome.died,
            (std::map<std::size_t, std::string>{{3, "row 3: it was killed"},
                                                {9, "the disk is full: its process ended early"},
                                                {14, "row 14: it did not end within 1 s"},
                                                {19, "row 19: its process ended early"}}));
  EXPECT_EQ(outcome.signal, 0);
}

TEST(RowPool, WhatOtherRowsLeftInAProcessIsNoFaultOfARow) {
  const Outcome outcome = compute(
      [](std::size_t row, bool isFirst) {
        if (row % 3 == 2 && !isFirst) std::raise(SIGKILL);
      },
      {.jobs = 2});
  EXPECT_EQ(outcome.finished.size(), 20U);
  EXPECT_TRUE(outcome.died.empty());
}

TEST(RowPool, AnInterruptEndsTheProcessesAndKeepsWhatIsFinished) {
  int count = 0;
  const Outcome outcome = compute(
      [](std::size_t row, bool) {
        kill(getpid(), SIGINT);  // from the terminal; the parent answers
        if (row == 19) pause();
      },
      {.jobs = 2},
      [&count] {
        if (++count == 12) std::raise(SIGTERM);
      });
  EXPECT_EQ(outcome.signal, SIGTERM);
  EXPECT_EQ(outcome.finished.size(), 12U);
  EXPECT_TRUE(outcome.died.empty());
}

}  // namespace
