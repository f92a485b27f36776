// Inserting a component at a solid.
#pragma once

#include "host/modeling/model_editor.h"

namespace vdm_host {

/// Makes the block reference, its feature and the reference to the base face; nothing is cut yet.
/// Errors name the object and the values.
OdStatus makeInsertion(OdDbDatabase* database, const OdDbObjectId& block,
                       const ComponentPlacement& placement, OdDbObjectId& insert,
                       OdDbObjectId& feature);

}  // namespace vdm_host
