// Result codes of operations that can fail on data.
#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"

enum OdResult : OdInt32 {
#define OD_RESULT(number, enumerator, text) enumerator = number,
#include "platform/base/result_rows.inc"
#undef OD_RESULT
};

/// The text of a result: lower case, no full stop. "unknown result" for a number without a row.
OD_API const char* odResultText(OdResult result) noexcept;

/// The enumerator's name, such as "eCorruptData"; "" for a number without a row.
OD_API const char* odResultName(OdResult result) noexcept;
