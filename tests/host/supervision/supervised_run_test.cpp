// Tests of supervised work: results, deaths of every kind, limits, notes.
#include "host/supervision/supervised_run.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

using supervision::runSupervised;

constexpr int kDied = 77;

/// Runs work that is to die, and gives what the supervisor learnt.
OdWorkDeath deathOf(const std::function<int()>& work) {
  OdWorkDeath seen;
  const int code = runSupervised(work, [&seen](const OdWorkDeath& death) {
    seen = death;
    return kDied;
  });
  EXPECT_EQ(code, kDied);
  return seen;
}

int resultOf(const std::function<int()>& work) {
  return runSupervised(work, [](const OdWorkDeath& death) {
    ADD_FAILURE() << death.operation << ": " << death.cause;
    return kDied;
  });
}

TEST(SupervisedRun, PassesTheResultOnAndLeavesTheCallerAlone) {
  int calls = 0;
  EXPECT_EQ(resultOf([&calls] {
              ++calls;
              return 3;
            }),
            3);
  EXPECT_EQ(calls, 0);  // the child counted its own copy
  EXPECT_EQ(odWorkBoard(), nullptr);
}

TEST(SupervisedRun, TellsWhatAProcessDiedOfAndWhatItWasAt) {
  struct Row {
    int signal;
    const char* cause;
  };
  for (const Row& row :
       {Row{SIGSEGV, "it crashed (segmentation fault)"}, Row{SIGABRT, "it gave up (abort)"},
        Row{SIGKILL, "it was killed"}, Row{SIGUSR1, "it ended by signal 10"}}) {
    const OdWorkDeath death = deathOf([&row] {
      const OdWorkNote outer("reading ", "a.stp");
      { const OdWorkNote closed("something that is done"); }
      const OdWorkNote inner("face #12");
      OdWorkNote::change("face ", "#13");
      std::signal(row.signal, SIG_DFL);  // sanitizers handle some themselves
      std::raise(row.signal);
      return 0;
    });
    EXPECT_EQ(death.signal, row.signal);
    EXPECT_EQ(death.operation, "reading a.stp: face #13");
    EXPECT_EQ(death.cause, row.cause);
    EXPECT_FALSE(death.written);
  }
}

TEST(SupervisedRun, EndsALoopAtItsLimitAndSaysWhich) {
  const OdWorkDeath death = deathOf([] {
    const OdWorkLimit outer({.seconds = 1});
    const OdWorkLimit inner({.seconds = 100});  // allows no more than the outer one
    std::atomic<unsigned> turns = 0;
    while (turns.fetch_add(2) != 1) {  // always even
    }
    return 0;
  });
  EXPECT_EQ(death.signal, SIGXCPU);
  EXPECT_EQ(death.cause, "it did not end within 1 s of processor time");
}

TEST(SupervisedRun, LimitsEndWithTheirScope) {
  EXPECT_EQ(resultOf([] {
              rlimit before{}, inside{}, after{};
              getrlimit(RLIMIT_CPU, &before);
              {
                const OdWorkLimit limit({.seconds = 5, .bytes = 1u << 30});
                getrlimit(RLIMIT_CPU, &inside);
              }
              getrlimit(RLIMIT_CPU, &after);
              return inside.rlim_cur < before.rlim_cur && after.rlim_cur == before.rlim_cur ? 1 : 2;
            }),
            1);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(SupervisedRun, RefusesMemoryBeyondTheLimit) {
  EXPECT_EQ(resultOf([] {
              const OdWorkLimit limit({.bytes = 64u << 20});
              try {
                std::vector<std::vector<char>> blocks;
                for (int i = 0; i < 100; ++i) blocks.emplace_back(8u << 20, 'x');
              } catch (const std::bad_alloc&) {
                return odWorkBoard()->outOfMemory ? 1 : 2;
              }
              return 3;
            }),
            1);
}
#endif

TEST(SupervisedRun, KeepsWhatFitsOfManyAndLongNotes) {
  const std::string umlauts = [] {
    std::string text;
    for (int i = 0; i < 200; ++i) text += "\xC3\xA4";
    return text;
  }();
  const OdWorkDeath death = deathOf([&umlauts] {
    const OdWorkNote longNote("x", umlauts);
    std::vector<std::unique_ptr<OdWorkNote>> deep;
    for (int i = 0; i < 40; ++i)
      deep.push_back(std::make_unique<OdWorkNote>(i % 3 == 0 ? "m" : "n"));
    odNoteFileWritten();
    std::raise(SIGKILL);
    return 0;
  });
  EXPECT_TRUE(death.written);
  EXPECT_EQ(death.operation.substr(0, 239), "x" + umlauts.substr(0, 238));
  EXPECT_EQ(death.operation.substr(239), ": m: n: m: n: m: n: m: n: m: n");
}

TEST(SupervisedRun, AChildDoesNotOutliveItsParent) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t parent = fork();
  if (parent == 0) {
    _exit(runSupervised(
        [&ends] {
          const pid_t self = getpid();
          if (write(ends[1], &self, sizeof(self)) != sizeof(self)) return 1;
          for (;;) pause();
          return 0;
        },
        [](const OdWorkDeath&) { return 0; }));
  }
  pid_t child = 0;
  ASSERT_EQ(read(ends[0], &child, sizeof(child)), static_cast<ssize_t>(sizeof(child)));
  close(ends[1]);
  kill(parent, SIGKILL);
  waitpid(parent, nullptr, 0);
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 0);  // the last holder of the pipe is dead
  close(ends[0]);
}

}  // namespace
