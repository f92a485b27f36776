// Selection markers: numbers that say which part of a drawable is being drawn.
#pragma once

#include "platform/base/types.h"

/// 0 stands for the drawable as a whole.
using OdGsMarker = OdInt64;
