// Result numbers of configurations that have no name in the runtime's table.
#pragma once

#include "platform/base/result.h"

// The numbers are seen by callers and fixed.
inline constexpr OdResult kVdmTableEmpty = static_cast<OdResult>(4);     // nothing to choose from
inline constexpr OdResult kVdmNotFound = static_cast<OdResult>(5);       // or bad input
inline constexpr OdResult kVdmDuplicateKey = static_cast<OdResult>(27);  // the configuration exists
inline constexpr OdResult kVdmNoVariable = static_cast<OdResult>(417);   // a variable does not open
