// Emission and folding of constants.
#include "platform/expressions/code_builder.h"

#include <utility>

#include "platform/expressions/arithmetic.h"
#include "platform/expressions/diagnostic.h"
#include "platform/expressions/machine.h"

namespace OdExpression {

namespace {

/// Computes one instruction whose operands are the constants 0 and 1; false when it has no finite
/// result.
bool compute(Instruction instruction, double a, double b, double& result) {
  const double constants[] = {a, b};
  double registers[1] = {};
  instruction.target = 0;
  instruction.aSource = instruction.bSource = Source::kConstant;
  instruction.a = 0;
  instruction.b = 1;
  const Machine machine{&instruction, &instruction + 1, {nullptr, constants, registers}, registers};
  if (machine.findFailure() != nullptr) return false;
  result = registers[0];
  return true;
}

Instruction instructionOf(Operation operation, int column, OdUInt16 function) {
  return {operation,
          Source::kConstant,
          Source::kConstant,
          0,
          static_cast<OdUInt16>(column),
          function,
          0,
          0};
}

}  // namespace

Value CodeBuilder::constant(double value, Dimension dimension, int column) {
  return {{Source::kConstant, 0}, value, dimension, column};
}

Value CodeBuilder::slot(OdUInt32 slot, Dimension dimension, int column) {
  return {{Source::kSlot, slot}, 0.0, dimension, column};
}

Value CodeBuilder::unary(Operation operation, const Value& a, int column, OdUInt16 function) {
  double folded;
  if (a.isConstant() &&
      compute(instructionOf(operation, column, function), a.constant, a.constant, folded)) {
    return constant(folded, {}, a.column);
  }
  const Operand operand = use(a);
  return emit(operation, operand, operand, a, column, function);
}

Value CodeBuilder::binary(Operation operation, const Value& a, const Value& b, int column,
                          OdUInt16 function) {
  double folded;
  if (a.isConstant() && b.isConstant() &&
      compute(instructionOf(operation, column, function), a.constant, b.constant, folded)) {
    return constant(folded, {}, a.column);
  }
  const Operand second = use(b);
  const Operand first = use(a);
  return emit(operation, first, second, a, column, function);
}

Value CodeBuilder::binarySwapped(Operation operation, const Value& a, const Value& b, int column) {
  double folded;
  if (a.isConstant() && b.isConstant() &&
      compute(instructionOf(operation, column, 0), b.constant, a.constant, folded)) {
    return constant(folded, {}, a.column);
  }
  const Operand second = use(b);
  const Operand first = use(a);
  return emit(operation, second, first, a, column, 0);
}

Operand CodeBuilder::use(const Value& value) {
  if (value.isComputed()) {
    m_depth = static_cast<int>(value.operand.index);
  } else if (value.isConstant()) {
    m_code.constants.push_back(value.constant);
    return {Source::kConstant, static_cast<OdUInt32>(m_code.constants.size() - 1)};
  }
  return value.operand;
}

Value CodeBuilder::emit(Operation operation, Operand a, Operand b, const Value& first, int column,
                        OdUInt16 function) {
  if (m_depth == kRegisterCount) {
    throw Diagnostic{Diagnostic::Kind::kLimit,
                     column,
                     "a deeper nesting of operations",
                     OdString().format(L"at most %d open results", kRegisterCount),
                     {}};
  }
  const auto target = static_cast<OdUInt8>(m_depth++);
  m_code.instructions.push_back({operation, a.source, b.source, target,
                                 static_cast<OdUInt16>(column), function, a.index, b.index});
  return {{Source::kRegister, target}, 0.0, {}, first.column};
}

std::size_t CodeBuilder::jumpIf(Operation jump, const Value& condition, int column) {
  const Operand operand = use(condition);
  m_code.instructions.push_back({jump, operand.source, operand.source, 0,
                                 static_cast<OdUInt16>(column), 0, operand.index, 0});
  return m_code.instructions.size() - 1;
}

std::size_t CodeBuilder::jump(int column) {
  m_code.instructions.push_back(instructionOf(Operation::kJump, column, 0));
  return m_code.instructions.size() - 1;
}

void CodeBuilder::land(std::size_t jump) {
  m_code.instructions[jump].b = static_cast<OdUInt32>(m_code.instructions.size());
}

Value CodeBuilder::inRegister(const Value& value) {
  if (value.isComputed()) return value;
  const Operand operand = use(value);
  Value copy = emit(Operation::kCopy, operand, operand, value, value.column, 0);
  copy.dimension = value.dimension;
  return copy;
}

void CodeBuilder::release(const Value& value) { m_depth = static_cast<int>(value.operand.index); }

Code CodeBuilder::finish(const Value& result) {
  m_code.result = use(result);
  m_code.dimension = result.dimension;
  m_depth = 0;
  return std::exchange(m_code, Code());
}

}  // namespace OdExpression
