// Compilation and its scopes.
#include "platform/expressions/compile.h"

#include "platform/expressions/instruction.h"
#include "platform/expressions/text_parser.h"
#include "platform/expressions/wide_text.h"

namespace OdExpression {

namespace {

/// A text without names is computed at once.
Program computed(Program program) {
  if (program.isConstant() || !program.slots().empty()) return program;
  Code code;
  code.constants.resize(1);
  if (!program.evaluate(nullptr, code.constants[0])) throw program.explain(nullptr);
  code.result = {Source::kConstant, 0};
  code.dimension = program.dimension();
  return Program(std::move(code));
}

}  // namespace

NameScope::~NameScope() = default;

std::optional<Binding> EmptyScope::find(const OdString&) { return std::nullopt; }

bool compile(const OdString& text, NameScope& scope, const CompileOptions& options,
             Program& program, Diagnostic& diagnostic) {
  try {
    const WideText wide(text);
    program = computed(Program(TextParser(wide.view(), scope, options).parse()));
    return true;
  } catch (const Diagnostic& failure) {
    diagnostic = failure;
    return false;
  }
}

}  // namespace OdExpression
