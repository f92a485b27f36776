// Emits instructions for the parser.
#pragma once

#include "platform/expressions/instruction.h"

namespace OdExpression {

/// A part of an expression that has been parsed. Constants and slots are not loaded before an
/// instruction uses them; what was computed lies in a register.
struct Value {
  Operand operand;      ///< of a constant only the source counts
  double constant = 0;  ///< of a constant
  Dimension dimension;
  int column = 1;

  [[nodiscard]] bool isConstant() const noexcept { return operand.source == Source::kConstant; }
  [[nodiscard]] bool isComputed() const noexcept { return operand.source == Source::kRegister; }
};

/// Registers are used as a stack: values are consumed in the reverse order in which they were
/// computed. Operations on constants that have a finite result are computed at once.
class CodeBuilder {
 public:
  [[nodiscard]] static Value constant(double value, Dimension dimension, int column);
  [[nodiscard]] static Value slot(OdUInt32 slot, Dimension dimension, int column);

  /// The result has the column of `a`; its dimension is left to the caller. `column` is that of the
  /// operation.
  Value unary(Operation operation, const Value& a, int column, OdUInt16 function = 0);
  Value binary(Operation operation, const Value& a, const Value& b, int column,
               OdUInt16 function = 0);
  /// The operation on `b` and `a`.
  Value binarySwapped(Operation operation, const Value& a, const Value& b, int column);

  /// Consumes the condition; `jump` is kJumpIfFalse or kJumpIfTrue. The result is the place of the
  /// jump for land().
  std::size_t jumpIf(Operation jump, const Value& condition, int column);
  std::size_t jump(int column);
  /// The jump goes to the instruction that comes next.
  void land(std::size_t jump);
  /// Consumes the value and leaves it in the next free register, whatever it was before.
  Value inRegister(const Value& value);
  /// Forgets the register of a value, whose instructions stay: the other branch writes it again.
  void release(const Value& value);

  /// The program's code; the builder is empty afterwards.
  [[nodiscard]] Code finish(const Value& result);

 private:
  [[nodiscard]] Operand use(const Value& value);
  Value emit(Operation operation, Operand a, Operand b, const Value& first, int column,
             OdUInt16 function);

  Code m_code;
  int m_depth = 0;
};

}  // namespace OdExpression
