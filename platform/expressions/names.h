// The names that a text uses, and changing one of them.
#pragma once

#include <vector>

#include "platform/base/export.h"
#include "platform/base/string.h"
#include "platform/expressions/diagnostic.h"

namespace OdExpression {

/// One mention of a name.
struct Mention {
  OdString name;   ///< as written
  int column = 1;  ///< 1-based, in characters
};

/// The mentions of names in the text, in order, repetitions included; functions, constants and
/// units are none. Returns false and sets `diagnostic` when the text is not formed as the language
/// asks; `mentions` is then left as it was.
[[nodiscard]] OD_API bool listNames(const OdString& text, std::vector<Mention>& mentions,
                                    Diagnostic& diagnostic);

/// The text with every mention of `oldName` (case-insensitive) replaced by `newName`; the rest is
/// kept character for character, except that a space separates a slash from a new name that would
/// read as a unit there (`2 mm/a` becomes `2 mm/ s`). The text itself when it does not mention the
/// name or is not well formed.
[[nodiscard]] OD_API OdString renameInText(const OdString& text, const OdString& oldName,
                                           const OdString& newName);

/// True when the text may name a variable: a letter of any script or `_`, then letters, digits and
/// `_`; no word of the language (and, or, not, true, false, pi, e, inf, nan, if). Otherwise sets
/// `diagnostic`.
[[nodiscard]] OD_API bool checkName(const OdString& name, Diagnostic& diagnostic);

/// The functions of the language in lower case, in alphabetic order.
[[nodiscard]] OD_API std::vector<OdString> functionNames();

}  // namespace OdExpression
