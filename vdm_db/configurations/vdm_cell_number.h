// Numbers in the texts of table cells.
#pragma once

#include "platform/base/string.h"

/// Reads a cell as a number: decimal or hexadecimal with an optional sign, fraction and exponent,
/// or the words for infinity and for what is not a number, as the C library reads one in the C
/// locale, with white space around it. False, and `value` is left alone, for any other text and for
/// a number that a double cannot hold.
[[nodiscard]] bool vdmParseCellNumber(const OdString& text, double& value);

/// The text without the white space around it; shares the buffer when there is none.
[[nodiscard]] OdString vdmTrimmedCell(const OdString& text);
