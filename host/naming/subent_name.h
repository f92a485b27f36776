// Naming a subentity by text or by a point.
#pragma once

#include "platform/base/string.h"
#include "platform/db/subent.h"
#include "platform/ge/point3d.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// "f_12", "e_3" or "v_7"; false, with `subent` untouched, for any other text.
[[nodiscard]] bool parseSubentName(const OdString& text, OdModelerSubent& subent);
[[nodiscard]] OdString subentName(OdModelerSubent subent);

/// The face, edge or vertex of `body` nearest to a point; `tolerance` in drawing units is how far
/// it may be, and how much nearer than the next one it must be. With the null type a vertex has
/// precedence over an edge and an edge over a face where both are within the tolerance.
/// eInvalidInput when nothing is near, or two are equally near: the text names both and their
/// distances.
OdStatus findSubentNear(const OdModelerBody& body, const OdGePoint3d& point,
                        OdModelerSubentType type, double tolerance, OdModelerSubent& found);

/// "plane 1200", "cylinder r 4.5", "line 30", "circle r 4.5 length 28.27", ... for lists.
[[nodiscard]] OdString describeSubent(const OdModelerBody& body, OdModelerSubent subent);

}  // namespace vdm_host
