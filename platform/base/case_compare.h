// Comparing texts without regard to case, in two meanings, independent of the locale.
#pragma once

#include "platform/base/export.h"
#include "platform/base/string.h"

/// Orders as a dictionary does: by the root collation of Unicode at its second level, so that case
/// is ignored and accents are not. Characters without a weight (control characters, invisible
/// joiners) are ignored as well. Negative, zero or positive. For sorting and for comparing what
/// people typed; two texts that compare as 0 here may still differ under odStrIEqual.
[[nodiscard]] OD_API int odStrICmp(const OdString& a, const OdString& b);

/// Equal after full case folding: exactly when odCaseFold gives the same text. For names and keys.
[[nodiscard]] OD_API bool odStrIEqual(const OdString& a, const OdString& b);

/// The text with full case folding (Unicode default, no language); fit as a key of a hash map.
/// Shares the buffer with its argument when nothing changes.
[[nodiscard]] OD_API OdString odCaseFold(const OdString& text);

/// Unicode's default upper and lower case mapping.
[[nodiscard]] OD_API OdString odToUpper(const OdString& text);
[[nodiscard]] OD_API OdString odToLower(const OdString& text);
