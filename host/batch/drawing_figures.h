// Figures of the parts in a drawing: volume, area, box, centre of mass.
#pragma once

#include "platform/db/database.h"
#include "platform/ge/extents3d.h"
#include "platform/ge/point3d.h"

namespace batch {

/// Of all solids that model space shows, also through inserts, in its coordinates and units. What
/// is on layers that are off or frozen does not count, such as the tools of components.
struct DrawingFigures {
  std::size_t solids = 0;
  double volume = 0.0;
  double area = 0.0;
  OdGeExtents3d box;   ///< invalid without solids
  OdGePoint3d centre;  ///< of mass, for one density; the origin without volume
};

/// Raises OdError for a solid that cannot be measured: without a body, or in an insert that
/// stretches it.
[[nodiscard]] DrawingFigures measureDrawing(OdDbDatabase& drawing);

}  // namespace batch
