// Taking faces off a body where they end in holes of its other faces.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/modeler/modeler.h"

namespace od_occt {

/// Takes faces off a body by dropping the loops in which they end: without the faces of a hole, a
/// pocket or a boss in the middle of a face the body is as if it never had one. All other faces
/// stay the very same. eNotApplicable, with the reason, where a face must be extended: the faces
/// end at an outer boundary, or at a loop that has edges with other faces too. `history` may be
/// null; on failure nothing is changed. May throw what the modeller throws.
OdStatus dropLoops(const OdModelerBodyPtr& body, std::span<const OdUInt32> faces,
                   OdModelerBodyPtr& result, OdModelerHistory* history);

}  // namespace od_occt
