// A compiled expression.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/base/export.h"
#include "platform/expressions/diagnostic.h"
#include "platform/expressions/dimension.h"

namespace OdExpression {

struct Code;
struct Instruction;
enum class Source : OdUInt8;

/// An expression as instructions over an array of doubles. It moves but does not copy; a constant
/// and a single name need no memory of their own. An empty program has the constant value 0.
///
/// Values are in base units (see Dimension): lengths in drawing units, angles in radians. One
/// program may be evaluated by several threads at a time.
class OD_API Program {
 public:
  Program() noexcept;
  explicit Program(Code&& code);
  ~Program();
  Program(Program&& other) noexcept;
  Program& operator=(Program&& other) noexcept;

  /// True when the program reads no slot.
  [[nodiscard]] bool isConstant() const noexcept;
  [[nodiscard]] Dimension dimension() const noexcept { return m_dimension; }
  /// The slots that the program reads, ascending, each once.
  [[nodiscard]] std::vector<OdUInt32> slots() const;
  /// This object and what it holds, in bytes.
  [[nodiscard]] std::size_t memoryBytes() const noexcept;

  /// Computes the value from `slots`, which is indexed by the slot numbers of the compilation; may
  /// be null for a constant. Allocates nothing. Returns false, and leaves `value` as it was, when
  /// there is no finite value; explain() then gives the reason.
  [[nodiscard]] bool evaluate(const double* slots, double& value) const noexcept;
  /// Asks the processor for the memory that evaluate() reads first.
  void prefetch() const noexcept { __builtin_prefetch(m_memory.get()); }
  /// The first operation that has no finite value for these slots, for which evaluate() was false.
  [[nodiscard]] Diagnostic explain(const double* slots) const;

 private:
  [[nodiscard]] const double* constants() const noexcept;
  [[nodiscard]] const Instruction* instructions() const noexcept;

  std::unique_ptr<std::byte[]> m_memory;  ///< constants, then instructions: one place to read from
  double m_value = 0.0;                   ///< of a program without instructions that reads no slot
  Dimension m_dimension;
  OdUInt32 m_resultIndex = 0;
  OdUInt16 m_instructionCount = 0;
  OdUInt16 m_constantCount = 0;
  Source m_resultSource;
};

}  // namespace OdExpression
