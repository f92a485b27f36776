// OdGiRegenType: what a picture is made for.
#pragma once

#include "platform/base/types.h"

/// Numbers are part of the interface.
enum OdGiRegenType : OdInt32 {
  kOdGiRegenTypeInvalid = 0,
  kOdGiStandardDisplay = 2,  ///< the picture on a screen or in a file
  kOdGiHideOrShade = 3,      ///< a picture with hidden surfaces removed
  kOdGiRender = 4,
  kOdGiForExplode = 5,  ///< the primitives become entities
  kOdGiSaveForProxy = 6,
  kOdGiForExtents = 7,  ///< only sizes are wanted: colours do not matter
};
