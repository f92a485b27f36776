// From the text of an expression to a program. The language is described in docs/expressions.md.
#pragma once

#include <optional>

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/expressions/diagnostic.h"
#include "platform/expressions/dimension.h"
#include "platform/expressions/program.h"

namespace OdExpression {

/// What a name is bound to.
struct Binding {
  OdUInt32 slot = 0;    ///< index in the array that evaluation reads
  Dimension dimension;  ///< of the value in the slot
};

/// The names that an expression may use. Names are found without regard to case: implementations
/// compare folded texts (odCaseFold, odStrIEqual).
class OD_API NameScope {
 public:
  virtual ~NameScope();
  /// Nothing when the name is unknown. Asked once for each mention of a name, in order, and for a
  /// unit right after a slash (`6 mm/s`), which must not be a name as well.
  [[nodiscard]] virtual std::optional<Binding> find(const OdString& name) = 0;
};

/// A scope without names.
class OD_API EmptyScope : public NameScope {
 public:
  [[nodiscard]] std::optional<Binding> find(const OdString& name) override;
};

/// A scope that knows every name, as a plain number in slot 0: for checks of the form alone.
class OD_API OpenScope : public NameScope {
 public:
  [[nodiscard]] std::optional<Binding> find(const OdString& name) override;
};

struct CompileOptions {
  /// The drawing's unit of length, by its stored number (odLengthUnit). With 0, undefined, a text
  /// that names a unit of length is refused.
  int lengthUnit = 0;
  /// What the result must measure; a plain number serves for everything.
  std::optional<Dimension> required;
};

/// Bounds on hostile input; beyond them the text is refused.
inline constexpr int kMaxTextLength = 10000;  ///< characters
inline constexpr int kMaxDepth = 100;       ///< nested parentheses, calls, powers, signs, branches
inline constexpr int kMaxNames = 1000;      ///< mentions of names
inline constexpr int kMaxNameLength = 255;  ///< characters of one name

/// Compiles the text. Returns true and sets `program`; or returns false, sets `diagnostic`, and
/// leaves `program` as it was. Takes time proportional to the text's length. A text without names
/// is computed at once; when it has no finite value it is refused.
[[nodiscard]] OD_API bool compile(const OdString& text, NameScope& scope,
                                  const CompileOptions& options, Program& program,
                                  Diagnostic& diagnostic);

}  // namespace OdExpression
