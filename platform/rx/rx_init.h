// Start and end of the run-time class system.
#pragma once

#include "platform/base/export.h"

/// Registers the classes of this folder. Calls nest; the first one registers.
OD_API void odrxInitialize();
/// The call that matches the first one releases them. While classes of others are registered it
/// raises OdError(eInvalidInput) naming one, and nothing is released.
OD_API void odrxUninitialize();
