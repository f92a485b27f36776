// How subentities of two bodies lie to each other in space.
#pragma once

#include "platform/ge/extents3d.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"

namespace naming_bench {

/// A point on the subentity: inside of a face, half way along an edge, the vertex itself.
[[nodiscard]] OdGePoint3d pointOn(const OdModelerBody& body, OdModelerSubent subent);

/// Distance of a point from a face, edge or vertex, boundary included; drawing units.
[[nodiscard]] double distanceTo(const OdGePoint3d& point, const OdModelerBody& body,
                                OdModelerSubent subent);

/// A box around a subentity, a little too large.
[[nodiscard]] OdGeExtents3d boxAround(const OdModelerBody& body, OdModelerSubent subent);

}  // namespace naming_bench
