// Utilities around constraint managers: dependencies, names, what is watched, cleaning up.
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

// ---- Names. Sets of names that are taken hold upper-case text.

/// Adds the names of all constraints of the manager.
VDM_DB_EXPORT void getConstraintNamesSet(VdmDbConstraintManager* manager,
                                         std::set<OdString>& names);
/// "<base>_<number>" with the first number from `start` on that is not taken; it is taken then.
/// With `tryBase` the base itself where it is free; the set is unchanged then.
[[nodiscard]] VDM_DB_EXPORT OdString generateUniqueName(const OdString& base,
                                                        std::set<OdString>& taken, int start,
                                                        bool tryBase);
/// The same, counting in `number`: it is the number that was used afterwards.
[[nodiscard]] VDM_DB_EXPORT OdString takeNumberedName(const OdString& base,
                                                      std::set<OdString>& taken, int& number);
/// Without the digits at its end, and then without one "_".
[[nodiscard]] VDM_DB_EXPORT OdString removeNumericSuffix(const OdString& name);
/// The name itself when it is free, otherwise one of the same base, counted from the number of
/// names that are taken. It is taken then.
[[nodiscard]] VDM_DB_EXPORT OdString uniqueNameNumericSuffix(const OdString& name,
                                                             std::set<OdString>& taken);

// ---- What is there

/// The entities that constraints of any block depend on, block by block. Empty for null.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getWatchedObjects(OdDbDatabase* database);
/// The managers of all blocks, in the order of the block table. Empty for null.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getBTRsConstraintManagers(OdDbDatabase* database);
/// The values of the constraints in rising order, each farther from the one before than the
/// tolerance.
[[nodiscard]] VDM_DB_EXPORT OdArray<double> getUniqueConstraintValues(
    const OdArray<VdmConstraintPtr>& constraints, double tolerance);

// ---- Cleaning up

/// Drops what no constraint uses of the model objects `candidates`: their dependencies, and those
/// that have none left, with their place in the registry. The manager is open for write.
VDM_DB_EXPORT void cleanupVdmDbObjects(VdmDbConstraintManager* manager,
                                       const OdDbObjectIdArray& candidates);
/// Removes constraints whose arguments are gone, and tells the VdmDbConstraintManagerPE their
/// names. A constraint of type 12 loses single arguments; one of a newer version is left alone. The
/// manager is upgraded for writing when it has to change.
VDM_DB_EXPORT void removeInvalidConstraints(VdmDbConstraintManager* manager);

}  // namespace vdmu
