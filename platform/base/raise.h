// Out-of-line raising of errors, for headers that must stay light.
#pragma once

#include "platform/base/export.h"
#include "platform/base/result.h"

/// Raise OdError (platform/base/error.h) with the code.
[[noreturn]] OD_API void odRaise(OdResult code);
/// The context is UTF-8 text that names the thing and both values.
[[noreturn]] OD_API void odRaise(OdResult code, const char* context);
/// Raise OdError_InvalidIndex for an index into a container of `size` elements.
[[noreturn]] OD_API void odRaiseInvalidIndex(OdInt64 index, OdInt64 size);
