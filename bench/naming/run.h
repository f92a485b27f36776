// The run of the benchmark: models, edits, references, verdicts.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/naming/judge.h"

namespace naming_bench {

struct RunOptions {
  std::uint64_t seed = 1;
  std::size_t modelsPerFamily = 2;
  std::size_t repeats = 1;      ///< of each edit on each model
  std::size_t sequences = 0;    ///< of each class of edits of components
  std::size_t references = 60;  ///< at most so many a case, drawn from all subentities
  std::string onlyEdit;         ///< empty: all
  std::string onlyFamily;
  std::string stepFolder;  ///< STEP parts to take along; empty: none
  bool explain = false;    ///< keep a line for each reference that is not right
};

struct CaseResult {
  std::string family;
  std::string model;
  std::string edit;
  std::uint64_t seed = 0;
  bool hasHistory = false;
  std::size_t judged = 0;     ///< references
  std::size_t undecided = 0;  ///< references of which the construction tells nothing
  std::vector<Score> scores;  ///< by method
  std::vector<std::string> lines;
};

struct RunResult {
  std::vector<std::string> methods;
  std::vector<CaseResult> cases;
  std::size_t refused = 0;  ///< edits that the modeller would not do
};

using MethodMaker = std::unique_ptr<NamingMethod> (*)();

/// Runs all cases. `progress`, if any, hears each case as it ends.
[[nodiscard]] RunResult runBenchmark(const RunOptions& options,
                                     const std::vector<MethodMaker>& methods,
                                     const std::function<void(const CaseResult&)>& progress = {});

}  // namespace naming_bench
