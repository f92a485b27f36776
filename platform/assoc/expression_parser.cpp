// OdExpression::Parser: checks and constant values.
#include "platform/assoc/expression_parser.h"

#include <algorithm>

#include "platform/expressions/compile.h"
#include "platform/expressions/names.h"

namespace OdExpression {

OdResult Parser::setExpression(const OdString& text) {
  m_isSet = false;
  m_names.clear();
  m_error.empty();
  EmptyScope scope;
  CompileOptions options;
  options.lengthUnit = m_lengthUnit;
  Diagnostic diagnostic;
  std::vector<Mention> mentions;
  // What names measure is not known here, so only a text without them has dimensions to check.
  const bool isFormed = listNames(text, mentions, diagnostic);
  const bool isSound =
      isFormed && (!mentions.empty() || compile(text, scope, options, m_program, diagnostic));
  if (!isSound) {
    m_error = diagnostic.text();
    return eInvalidInput;
  }
  for (const Mention& mention : mentions) {
    if (!usesName(mention.name)) m_names.append(mention.name);
  }
  m_isSet = true;
  return eOk;
}

OdResult Parser::setName(const OdString& name) {
  Diagnostic diagnostic;
  if (checkName(name, diagnostic)) return eOk;
  m_error = diagnostic.text();
  return eInvalidKey;
}

bool Parser::isConstExpression() const { return m_isSet && m_names.isEmpty(); }

OdDbEvalVariantPtr Parser::evaluate() const {
  double value = 0.0;
  if (!isConstExpression() || !m_program.evaluate(nullptr, value)) return {};
  return OdDbEvalVariant::init(value);
}

void Parser::getVariables(OdStringArray& names) const {
  names.append(m_names.begin(), m_names.end());
}

bool Parser::usesName(const OdString& name) const {
  return std::any_of(m_names.begin(), m_names.end(),
                     [&name](const OdString& used) { return used.iEquals(name); });
}

}  // namespace OdExpression
