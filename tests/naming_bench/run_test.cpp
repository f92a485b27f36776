// A short run of the naming benchmark: the drawing's references are never wrong.
#include "bench/naming/run.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "bench/naming/reference_drawing.h"
#include "bench/naming/report.h"

using namespace naming_bench;

namespace {

/// VDM_RANDOM_SEED plays another run.
std::uint64_t seedOfRun() {
  const char* const wanted = std::getenv("VDM_RANDOM_SEED");
  const std::uint64_t seed = wanted == nullptr ? 42 : std::strtoull(wanted, nullptr, 10);
  std::cout << "seed " << seed << '\n';
  return seed;
}

TEST(NamingBenchmark, ReferencesAreNeverWrongAndSeldomLost) {
  const DrawingRuntime runtime;
  RunOptions options;
  options.seed = seedOfRun();
  options.modelsPerFamily = 1;
  options.references = 25;
  options.explain = true;
  const RunResult result = runBenchmark(options, {makeReferenceMethod, makeIndexMethod});
  EXPECT_EQ(result.refused, 0U);
  EXPECT_GE(result.cases.size(), 150U);
  Score ours;
  Score numbers;
  for (const CaseResult& one : result.cases) {
    ours.add(one.scores[0]);
    numbers.add(one.scores[1]);
    for (const std::string& line : one.lines) {
      EXPECT_EQ(one.scores[0].all(Verdict::kWrong), 0U) << one.model << one.edit << line;
    }
  }
  const std::size_t answerable = ours.total(TruthKind::kAnswer);
  EXPECT_GE(answerable, 2000U);
  EXPECT_GE(ours.of(TruthKind::kAnswer, Verdict::kRight), answerable * 98 / 100);
  EXPECT_EQ(ours.of(TruthKind::kAmbiguous, Verdict::kRight), ours.total(TruthKind::kAmbiguous));
  // The edits do change numbers, or the run would prove nothing.
  EXPECT_LT(numbers.of(TruthKind::kAnswer, Verdict::kRight), answerable * 3 / 4);
}

TEST(NamingBenchmark, ReportsTheSameSumsForPeopleAndMachines) {
  RunResult result;
  result.methods = {"a"};
  CaseResult& one = result.cases.emplace_back();
  one.family = "plate";
  one.edit = "move";
  one.scores.resize(1);
  one.scores[0].add(TruthKind::kAnswer, Verdict::kRight);
  one.scores[0].add(TruthKind::kGone, Verdict::kWrong);
  EXPECT_NE(tableOf(result).find("2 references over 1 edits"), std::string::npos);
  EXPECT_NE(tableOf(result).find("1 of 1, 100.00 %"), std::string::npos);
  EXPECT_NE(jsonOf(result).find("\"wrong\": 1"), std::string::npos);
}

}  // namespace
