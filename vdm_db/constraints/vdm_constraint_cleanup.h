// Removing what constraints do not use, and constraints whose arguments were erased.
#pragma once

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbConstraintManager;

namespace vdmu {

/// Erases those constraint dependencies of the model objects `candidates` that no constraint uses.
/// A model object that has no dependency left is taken out of the registry and erased. The manager
/// is open for write.
VDM_DB_EXPORT void cleanupVdmDbObjects(VdmDbConstraintManager* manager,
                                       const OdDbObjectIdArray& candidates);
/// Removes constraints with an argument that no longer resolves, and passes their names to the
/// VdmDbConstraintManagerPE. A constraint of type 12 loses single arguments instead; one of a newer
/// version is left alone. The manager is upgraded for writing when it has to change.
VDM_DB_EXPORT void removeInvalidConstraints(VdmDbConstraintManager* manager);

}  // namespace vdmu
