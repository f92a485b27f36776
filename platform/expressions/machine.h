// Runs instructions.
#pragma once

#include "platform/expressions/instruction.h"

namespace OdExpression {

/// The instructions and the three arrays that they read. Owns nothing.
///
/// Values that are not finite arise from overflow, from division by zero and outside of a
/// function's domain. Adding, subtracting and multiplying cannot make such a value finite again;
/// dividing, comparing, branching and calling can (1 / inf is 0, nan < 1 is false). So these check
/// their operands, the caller checks the result, and no failure is lost though sums and products
/// check nothing. To find the cause of a failure, the instructions are run once more with a check
/// of every result: the first one that is not finite is the cause.
struct Machine {
  const Instruction* begin;
  const Instruction* end;
  const double* sources[3];  ///< by Source
  double* registers;         ///< kRegisterCount of them, also the third source

  [[nodiscard]] double at(Source source, OdUInt32 index) const noexcept {
    return sources[static_cast<std::size_t>(source)][index];
  }

  /// Returns null when all instructions were run, else the one whose operands have no finite
  /// result.
  [[nodiscard]] const Instruction* run() const noexcept;
  /// The same with a check of every result.
  [[nodiscard]] const Instruction* findFailure() const noexcept;
};

}  // namespace OdExpression
