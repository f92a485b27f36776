// Inserting a component at a solid.
#pragma once

#include "host/modeling/model_editor.h"

namespace vdm_host {

/// The place of a component: its point, its z axis out of the material, turned about that axis
/// (radians).
[[nodiscard]] OdGeMatrix3d componentFrame(const OdGePoint3d& point, const OdGeVector3d& direction,
                                          double rotation);

/// Makes the block reference, its feature and the reference to the base face; nothing is cut yet.
/// Errors name the object and the values.
OdStatus makeInsertion(OdDbDatabase* database, const OdDbObjectId& block,
                       const ComponentPlacement& placement, OdDbObjectId& insert,
                       OdDbObjectId& feature);

}  // namespace vdm_host
