// Judging answers against truths, and counting.
//
// Laws of judging:
//   1. where an answer exists, naming it is right. A method that can name several subentities must
//      name all parts of a split one and nothing else; one that can name only one, any part;
//   2. merged subentities are right when they name the merged one;
//   3. for what was removed, lost is right;
//   4. what is built to be ambiguous is right when it is reported ambiguous;
//   5. naming anything else is wrong: a part of what it should be, something else, or something
//      where there is nothing or no way to tell;
//   6. reporting lost or ambiguous where that is not the truth counts as lost or ambiguous.
#pragma once

#include <array>
#include <cstddef>

#include "bench/naming/method.h"
#include "bench/naming/truth.h"

namespace naming_bench {

enum class Verdict { kRight, kLost, kWrong, kAmbiguous };
inline constexpr std::size_t kVerdicts = 4;

[[nodiscard]] Verdict judge(const Truth& truth, const Answer& answer, bool namesAllParts);

/// Counts by kind of truth and by verdict.
struct Score {
  std::array<std::array<std::size_t, kVerdicts>, 3> counts{};

  void add(TruthKind truth, Verdict verdict);
  void add(const Score& other);
  [[nodiscard]] std::size_t of(TruthKind truth, Verdict verdict) const;
  [[nodiscard]] std::size_t total(TruthKind truth) const;
  /// Over all kinds of truth.
  [[nodiscard]] std::size_t all(Verdict verdict) const;
};

}  // namespace naming_bench
