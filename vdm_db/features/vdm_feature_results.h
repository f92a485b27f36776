// Result numbers of features that have no name in the runtime's table.
#pragma once

#include "platform/base/result.h"

// The numbers are seen by callers and fixed.
inline constexpr OdResult kVdmNotHandled = static_cast<OdResult>(3);  // the event was not handled
inline constexpr OdResult kVdmNotSuppressing = static_cast<OdResult>(5);  // nothing to suppress
inline constexpr OdResult kVdmValueRefused = static_cast<OdResult>(5);    // out of range
inline constexpr OdResult kVdmNullFeature = static_cast<OdResult>(16);  // a feature pointer is null
inline constexpr OdResult kVdmNoFeature = static_cast<OdResult>(417);   // a carrier has no feature
