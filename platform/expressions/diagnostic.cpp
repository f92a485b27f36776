// One line of text for a finding.
#include "platform/expressions/diagnostic.h"

namespace OdExpression {

OdString Diagnostic::text() const {
  OdString text;
  text.format(L"column %d: found %ls, expected %ls", column, found.c_str(), expected.c_str());
  if (!suggestion.isEmpty()) text += OdString("; write ") + suggestion;
  return text;
}

}  // namespace OdExpression
