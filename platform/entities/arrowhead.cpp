// Arrowheads of leaders and dimensions.
#include "platform/entities/arrowhead.h"

#include <array>

#include "platform/gi/world_draw.h"

void oddbDrawArrowhead(OdGiWorldDraw* context, const OdGePoint3d& tip,
                       const OdGeVector3d& direction, const OdGeVector3d& normal, double length) {
  if (!(length > 0.0)) return;
  const OdGePoint3d back = tip - direction * length;
  const OdGeVector3d half = normal.crossProduct(direction) * (length / 6);
  context->geometry().polygon(std::array{tip, back + half, back - half});
}
