// The instructions of a program.
//
// A register machine: an instruction reads up to two operands and writes one register. An operand
// is an index into one of three arrays, the slots of the caller, the constants of the program and
// the registers of the evaluation, so reading it takes one load and no branch, and names and
// constants cost no instruction. Registers are numbered by the depth at which the compiler needs
// them, as on a stack.
#pragma once

#include <vector>

#include "platform/base/types.h"
#include "platform/expressions/dimension.h"

namespace OdExpression {

enum class Source : OdUInt8 { kSlot, kConstant, kRegister };

enum class Operation : OdUInt8 {
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kPower,
  kLess,
  kLessEqual,
  kEqual,
  kNotEqual,
  kNegate,
  kNot,
  kTruth,  ///< 1 for every number but 0
  kCopy,
  kCallUnary,    ///< the function of row `function`
  kCallBinary,   ///< the first binary form of row `function`
  kCallTernary,  ///< the second one, of the result so far and the third argument
  kJump,         ///< to the instruction `b`
  kJumpIfFalse,  ///< to the instruction `b` when the operand `a` is 0
  kJumpIfTrue,   ///< to the instruction `b` when the operand `a` is not 0
};

struct Operand {
  Source source = Source::kConstant;
  OdUInt32 index = 0;
};

struct Instruction {
  Operation operation;
  Source aSource;
  Source bSource;
  OdUInt8 target;  ///< register
  OdUInt16 column;
  OdUInt16 function;
  OdUInt32 a;
  OdUInt32 b;
};
static_assert(sizeof(Instruction) == 16);

inline constexpr int kRegisterCount = 256;

/// What the compiler hands to a program.
struct Code {
  std::vector<Instruction> instructions;
  std::vector<double> constants;
  Operand result;
  Dimension dimension;
};

}  // namespace OdExpression
