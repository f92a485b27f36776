// The benchmark's tables.
#pragma once

#include <string>

#include "bench/naming/run.h"

namespace naming_bench {

/// For people: by edit, by family and in all.
[[nodiscard]] std::string tableOf(const RunResult& result);
/// For machines: cases with their scores, and the sums.
[[nodiscard]] std::string jsonOf(const RunResult& result);

}  // namespace naming_bench
