// The loop over the instructions.
#include "platform/expressions/machine.h"

#include <cmath>

#include "platform/expressions/arithmetic.h"
#include "platform/expressions/functions.h"

namespace OdExpression {

namespace {

enum class Check : OdUInt8 { kWhereNeeded, kEverywhere };

double ofTruth(bool truth) noexcept { return truth ? 1.0 : 0.0; }

template <Check kCheck>
const Instruction* runMachine(const Machine& machine) noexcept {
  for (const Instruction* step = machine.begin; step != machine.end; ++step) {
    const auto a = [&] { return machine.at(step->aSource, step->a); };
    const auto b = [&] { return machine.at(step->bSource, step->b); };
    double result;
    switch (step->operation) {
      case Operation::kAdd:
        result = a() + b();
        break;
      case Operation::kSubtract:
        result = a() - b();
        break;
      case Operation::kMultiply:
        result = a() * b();
        break;
      case Operation::kNegate:
        result = -a();
        break;
      case Operation::kCopy:
        result = a();
        break;
      case Operation::kDivide:
        if (b() == 0.0 || !isFinite(b())) return step;
        result = a() / b();
        break;
      case Operation::kPower:
        if (!isFinite(a()) || !isFinite(b())) return step;
        result = std::pow(a(), b());
        break;
      case Operation::kLess:
        if (!isFinite(a()) || !isFinite(b())) return step;
        result = ofTruth(isLess(a(), b()));
        break;
      case Operation::kLessEqual:
        if (!isFinite(a()) || !isFinite(b())) return step;
        result = ofTruth(!isLess(b(), a()));
        break;
      case Operation::kEqual:
        if (!isFinite(a()) || !isFinite(b())) return step;
        result = ofTruth(isEqual(a(), b()));
        break;
      case Operation::kNotEqual:
        if (!isFinite(a()) || !isFinite(b())) return step;
        result = ofTruth(!isEqual(a(), b()));
        break;
      case Operation::kNot:
        if (!isFinite(a())) return step;
        result = ofTruth(a() == 0.0);
        break;
      case Operation::kTruth:
        if (!isFinite(a())) return step;
        result = ofTruth(a() != 0.0);
        break;
      case Operation::kCallUnary:
        if (!isFinite(a())) return step;
        result = functionRow(step->function).unary(a());
        break;
      case Operation::kCallBinary:
      case Operation::kCallTernary: {
        if (!isFinite(a()) || !isFinite(b())) return step;
        const bool isThird = step->operation == Operation::kCallTernary;
        result = functionRow(step->function).binary[isThird ? 1 : 0](a(), b());
        break;
      }
      case Operation::kJump:
        step = machine.begin + step->b - 1;
        continue;
      case Operation::kJumpIfFalse:
        if (!isFinite(a())) return step;
        if (a() == 0.0) step = machine.begin + step->b - 1;
        continue;
      case Operation::kJumpIfTrue:
        if (!isFinite(a())) return step;
        if (a() != 0.0) step = machine.begin + step->b - 1;
        continue;
      default:
        __builtin_unreachable();
    }
    if constexpr (kCheck == Check::kEverywhere) {
      if (!isFinite(result)) return step;
    }
    machine.registers[step->target] = result;
  }
  return nullptr;
}

}  // namespace

const Instruction* Machine::run() const noexcept { return runMachine<Check::kWhereNeeded>(*this); }

const Instruction* Machine::findFailure() const noexcept {
  return runMachine<Check::kEverywhere>(*this);
}

}  // namespace OdExpression
