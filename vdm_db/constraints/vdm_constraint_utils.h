// Constraint managers of a drawing: their dependencies, status and contents.
#pragma once

#include <set>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

class OdDbDatabase;

namespace vdmu {

// ---- Dependencies and status

/// One dependency for each path, in order, found or made with its model object. Raises OdError
/// "Failed to create dependency", and OdError_NotThatKindOfClass for a model object of another
/// class.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray
createConstrDependencies(VdmDbConstraintManager* manager, const OdDbFullSubentPathArray& paths);
/// Raises the status of the manager to `status`, never lowers it, and drops its TC cache. Nothing
/// happens for an id that is no manager or cannot be opened for write.
VDM_DB_EXPORT void markConstraintManagerChanged(
    const OdDbObjectId& manager, VdmDbConstraintManager::ConstraintManagerStatus status);

// ---- Contents

/// The entities that constraints of any block depend on, block by block. Empty for null. Raises
/// OdError_NotThatKindOfClass where an object of another class has the place of a manager.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getWatchedObjects(OdDbDatabase* database);
/// The managers of all blocks, in the order of the block table. Empty for null.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getBTRsConstraintManagers(OdDbDatabase* database);
/// The values of the constraints in rising order, each farther from the one before than the
/// tolerance. Values that are no numbers are left out.
[[nodiscard]] VDM_DB_EXPORT OdArray<double> getUniqueConstraintValues(
    const OdArray<VdmConstraintPtr>& constraints, double tolerance);
/// Makes a variable for each of those values of the block's constraints, and sets its name as the
/// expression of the constraints whose value is that one within the tolerance. The variables are
/// called "value", with a number where that is taken. Nothing happens for a block without manager.
VDM_DB_EXPORT void createVariablesForConstraintValues(OdDbObjectId block, double tolerance);

}  // namespace vdmu
