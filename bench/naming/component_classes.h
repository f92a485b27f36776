// Sequences of edits of parts with components, each class of them a row of the benchmark.
#pragma once

#include <functional>

#include "bench/naming/run.h"

namespace naming_bench {

/// Plays every class `options.sequences` times and judges all names after every step. The scores
/// are those of the drawing's references, at `ours`; the other `methods - 1` methods take no part.
/// `done` hears each sequence as it ends.
void playComponents(const RunOptions& options, std::size_t methods, std::size_t ours,
                    RunResult& result, const std::function<void(const CaseResult&)>& done);

}  // namespace naming_bench
