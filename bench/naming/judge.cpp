// Judging answers against truths, and counting.
#include "bench/naming/judge.h"

#include <algorithm>
#include <numeric>

namespace naming_bench {

Verdict judge(const Truth& truth, const Answer& answer, bool namesAllParts) {
  if (answer.kind == Answer::Kind::kLost) {
    return truth.kind == TruthKind::kGone ? Verdict::kRight : Verdict::kLost;
  }
  if (answer.kind == Answer::Kind::kAmbiguous) {
    return truth.kind == TruthKind::kAmbiguous ? Verdict::kRight : Verdict::kAmbiguous;
  }
  if (truth.kind != TruthKind::kAnswer) return Verdict::kWrong;
  if (namesAllParts) {
    return answer.subents == truth.subents ? Verdict::kRight : Verdict::kWrong;
  }
  return !answer.subents.empty() && std::ranges::includes(truth.subents, answer.subents)
             ? Verdict::kRight
             : Verdict::kWrong;
}

void Score::add(TruthKind truth, Verdict verdict) {
  ++counts.at(static_cast<std::size_t>(truth))[static_cast<std::size_t>(verdict)];
}

void Score::add(const Score& other) {
  for (std::size_t t = 0; t < counts.size(); ++t) {
    for (std::size_t v = 0; v < kVerdicts; ++v) counts[t][v] += other.counts[t][v];
  }
}

std::size_t Score::of(TruthKind truth, Verdict verdict) const {
  return counts.at(static_cast<std::size_t>(truth))[static_cast<std::size_t>(verdict)];
}

std::size_t Score::total(TruthKind truth) const {
  const auto& row = counts.at(static_cast<std::size_t>(truth));
  return std::accumulate(row.begin(), row.end(), std::size_t{0});
}

std::size_t Score::all(Verdict verdict) const {
  std::size_t sum = 0;
  for (const auto& row : counts) sum += row[static_cast<std::size_t>(verdict)];
  return sum;
}

}  // namespace naming_bench
