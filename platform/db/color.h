// OdCmColor: the colour type of drawing objects.
#pragma once

#include "platform/gi/entity_color.h"

using OdCmColor = OdCmEntityColor;
