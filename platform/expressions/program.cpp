// Programs: evaluation and the reasons of failures.
//
// Evaluation keeps nothing that could explain a failure: it is what runs for every variable. Who
// asks for a reason has the program run a second time, up to the instruction that fails, and reads
// the operands of that instruction.
#include "platform/expressions/program.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "platform/base/sort_unique.h"
#include "platform/expressions/arithmetic.h"
#include "platform/expressions/functions.h"
#include "platform/expressions/instruction.h"
#include "platform/expressions/machine.h"
#include "platform/expressions/number_text.h"

namespace OdExpression {

static_assert(std::is_trivially_copyable_v<Instruction> && alignof(Instruction) <= alignof(double));

namespace {

OdString quoted(double value) { return OdString("'") + numberText(value) + "'"; }

Diagnostic failureOf(const Instruction& step, double a, double b) {
  Diagnostic diagnostic{Diagnostic::Kind::kEvaluation, step.column, {}, {}, {}};
  const bool isUnary = step.operation == Operation::kCallUnary;
  const bool isCall = isUnary || step.operation == Operation::kCallBinary ||
                      step.operation == Operation::kCallTernary;
  if (!isFinite(a) || !isFinite(b)) {
    diagnostic.found = "a name whose value is " + numberText(isFinite(a) ? b : a);
    diagnostic.expected = "a finite value";
  } else if (isCall) {
    const FunctionRow& row = functionRow(step.function);
    diagnostic.found = OdString(std::string(row.name)) + " of " + quoted(a);
    if (!isUnary) diagnostic.found += " and " + quoted(b);
    diagnostic.expected = *row.domain == '\0' ? "finite arguments" : row.domain;
  } else if (step.operation == Operation::kDivide && b == 0.0) {
    diagnostic.found = "a division by zero";
    diagnostic.expected = "a divisor other than 0";
  } else if (step.operation == Operation::kPower) {
    diagnostic.found = quoted(a) + " to the power of " + quoted(b);
    diagnostic.expected = "a base above 0 or a whole exponent, and a smaller power";
  } else {
    diagnostic.found = "a value beyond 1.8e308";
    diagnostic.expected = "smaller values";
  }
  return diagnostic;
}

}  // namespace

Program::Program() noexcept : m_resultSource(Source::kConstant) {}
Program::~Program() = default;
Program::Program(Program&& other) noexcept = default;
Program& Program::operator=(Program&& other) noexcept = default;

Program::Program(Code&& code)
    : m_dimension(code.dimension),
      m_resultIndex(code.result.index),
      m_instructionCount(static_cast<OdUInt16>(code.instructions.size())),
      m_resultSource(code.result.source) {
  if (m_instructionCount != 0) {
    m_constantCount = static_cast<OdUInt16>(code.constants.size());
    const std::size_t constantBytes = code.constants.size() * sizeof(double);
    const std::size_t instructionBytes = code.instructions.size() * sizeof(Instruction);
    m_memory = std::make_unique<std::byte[]>(constantBytes + instructionBytes);
    if (constantBytes != 0) std::memcpy(m_memory.get(), code.constants.data(), constantBytes);
    std::memcpy(m_memory.get() + constantBytes, code.instructions.data(), instructionBytes);
  } else if (m_resultSource == Source::kConstant) {
    m_value = code.constants[m_resultIndex];
  }
}

const double* Program::constants() const noexcept {
  return reinterpret_cast<const double*>(m_memory.get());
}

const Instruction* Program::instructions() const noexcept {
  return reinterpret_cast<const Instruction*>(m_memory.get() + m_constantCount * sizeof(double));
}

bool Program::isConstant() const noexcept {
  return m_instructionCount == 0 && m_resultSource == Source::kConstant;
}

std::vector<OdUInt32> Program::slots() const {
  std::vector<OdUInt32> slots;
  const auto add = [&slots](Source source, OdUInt32 index) {
    if (source == Source::kSlot) slots.push_back(index);
  };
  const Instruction* const begin = instructions();
  for (const Instruction* step = begin; step != begin + m_instructionCount; ++step) {
    add(step->aSource, step->a);
    add(step->bSource, step->b);
  }
  add(m_resultSource, m_resultIndex);
  odSortUnique(slots);
  return slots;
}

std::size_t Program::memoryBytes() const noexcept {
  return sizeof(Program) + m_instructionCount * sizeof(Instruction) +
         m_constantCount * sizeof(double);
}

bool Program::evaluate(const double* slots, double& value) const noexcept {
  double result = m_value;
  if (m_instructionCount != 0) {
    double registers[kRegisterCount];
    const Instruction* const begin = instructions();
    const Machine machine{
        begin, begin + m_instructionCount, {slots, constants(), registers}, registers};
    if (machine.run() != nullptr) return false;
    result = machine.at(m_resultSource, m_resultIndex);
  } else if (m_resultSource == Source::kSlot) {
    result = slots[m_resultIndex];
  }
  if (!isFinite(result)) return false;
  value = result;
  return true;
}

Diagnostic Program::explain(const double* slots) const {
  double registers[kRegisterCount] = {};
  const Instruction* const begin = instructions();
  const Machine machine{
      begin, begin + m_instructionCount, {slots, constants(), registers}, registers};
  const Instruction* const step = machine.findFailure();
  if (step != nullptr) {
    // A jump has no second operand, other instructions without one repeat the first.
    const double a = machine.at(step->aSource, step->a);
    const bool isJump =
        step->operation == Operation::kJumpIfFalse || step->operation == Operation::kJumpIfTrue;
    return failureOf(*step, a, isJump ? a : machine.at(step->bSource, step->b));
  }
  Diagnostic diagnostic{Diagnostic::Kind::kEvaluation, 1, {}, "a finite value", {}};
  double value = 0.0;
  if (evaluate(slots, value)) {
    diagnostic.found = "the value " + numberText(value);
  } else {
    diagnostic.found = "a name whose value is " + numberText(slots[m_resultIndex]);
  }
  return diagnostic;
}

}  // namespace OdExpression
