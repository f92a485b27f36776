// Finding components and managers in a drawing.
#pragma once

#include "host/modeling/component_feature.h"
#include "platform/db/database.h"

namespace vdm_host {

/// Managers of features of all blocks, in the order of the block table.
[[nodiscard]] OdDbObjectIdArray featureManagers(OdDbDatabase* database);
/// Components that work on the solid, in the order in which they were made.
[[nodiscard]] OdDbObjectIdArray componentsOfSolid(const OdDbObjectId& solid);
/// The component of an insert, or the id itself when it is one; null when there is none.
[[nodiscard]] OdDbObjectId componentOf(const OdDbObjectId& insertOrFeature);
/// Takes the references out of the block that nobody watches any more.
void dropUnwatchedReferences(const OdDbObjectId& block);

}  // namespace vdm_host
