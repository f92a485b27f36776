// Finding components and managers in a drawing.
#pragma once

#include <utility>
#include <vector>

#include "host/modeling/component_feature.h"
#include "platform/db/database.h"

namespace vdm_host {

/// Managers of features of all blocks, in the order of the block table.
[[nodiscard]] OdDbObjectIdArray featureManagers(OdDbDatabase* database);
/// Components that work on the solid, in the order in which they were made.
[[nodiscard]] OdDbObjectIdArray componentsOfSolid(const OdDbObjectId& solid);
/// Components whose inserts show the block.
[[nodiscard]] OdDbObjectIdArray componentsOfBlock(const OdDbObjectId& block);
/// The component of an insert, or the id itself when it is one; null when there is none.
[[nodiscard]] OdDbObjectId componentOf(const OdDbObjectId& insertOrFeature);
/// Number of the subentity that a reference stands for; 0 when it is unresolved or does not open.
[[nodiscard]] OdUInt32 resolvedIndexOf(const OdDbObjectId& reference);
/// Faces that references to the component's opening stand for at present, each with the number of
/// the tool's face.
[[nodiscard]] std::vector<std::pair<int, OdUInt32>> openingFacesOf(
    const VdmComponentFeature& component);
/// Takes the references out of the block that have no watcher left.
void dropUnwatchedReferences(const OdDbObjectId& block);

}  // namespace vdm_host
