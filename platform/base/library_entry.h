// Libraries that are loaded when they are first needed.
#pragma once

#include "platform/base/export.h"
#include "platform/base/result.h"

/// The function `entry` of a library in the folder of the runtime's own libraries; `library` is a
/// plain file name. The library stays loaded until the process ends, since objects of it may live
/// as long. Raises OdError with the code `failure` and the loader's text when there is none.
[[nodiscard]] OD_API void* odLibraryEntry(const char* library, const char* entry, OdResult failure);
