// Arrowheads of leaders and dimensions.
#pragma once

#include "platform/ge/point3d.h"

class OdGiWorldDraw;

/// Draws a filled, closed arrowhead whose point is at `tip`; `direction` is the unit vector in
/// which it points, and the head is a third as wide as long.
void oddbDrawArrowhead(OdGiWorldDraw* context, const OdGePoint3d& tip,
                       const OdGeVector3d& direction, const OdGeVector3d& normal, double length);
