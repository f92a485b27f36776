// Walks along the dependencies of variables.
#pragma once

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

// ---- What can be reached. The ids that are given come first, in their order, then what was found,
// ---- in the order of discovery, nothing twice. What is not of the class that a walk starts from
// ---- leads nowhere.

/// From actions to all that their value dependencies lead to, of any class. `depth` is a switch: 1
/// or less gives the ids alone, more gives everything.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getUsedVariables(const OdDbObjectIdArray& ids,
                                                               int depth);
/// From variables to the variables whose expressions mention them.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getDependentVariables(const OdDbObjectIdArray& ids);
/// From variables to the variables that their expressions mention.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getDefiningVariables(const OdDbObjectIdArray& ids);

// ---- Filters. The array keeps its length and order, and null ids take the places of what is
// ---- dropped.

/// Drops variables that the expression of another variable mentions.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray filterUnusedVariables(const OdDbObjectIdArray& ids);
/// Drops actions that depend on the value of a variable.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray
filterIndependentVariables(const OdDbObjectIdArray& ids);

}  // namespace vdmu
