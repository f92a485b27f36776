// Copies of blocks with everything that the managers know about them.
#pragma once

#include <map>

#include "platform/base/result.h"
#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Ends a clone operation whose ids are translated: where it has given a block a second manager of
/// persistent ids, of features or of constraints, the manager of the block takes over from it. A
/// block that has none gets one. The managers of cloned blocks are linked under the root manager.
/// Paths through blocks that the destination had already lead through those blocks.
///
/// All blocks share one context, in the order persistent ids, features, constraints, so that the
/// model objects which the first two keep are known to the last. `keepAll` takes over what belongs
/// to no clone, too. `replaced` maps the ids of what was merged to their new ids.
/// Failure raises and is not rolled back; run it in a transaction.
VDM_DB_EXPORT void mergeClonedManagers(OdDbIdMapping& mapping, bool keepAll,
                                       std::map<OdDbObjectId, OdDbObjectId>& replaced);

/// Clones the entities of a block, its associative actions (variables among them), and what its
/// managers know about them, into the block `target` of the same drawing or of another one:
/// references, features and constraints of the clones are those of the originals, and lead to the
/// clones. What `target` holds stays. Names that are taken get numbers. Blocks and layers that both
/// drawings have by name are the target's.
///
/// Returns what cloning returns, eWrongObjectType when one of the two is no block, eInvalidInput
/// for a block into itself. On failure the drawing is as before, and the mapping serves no further
/// operation; errors of a manager raise.
VDM_DB_EXPORT OdResult cloneBlockWithModel(const OdDbObjectId& source, const OdDbObjectId& target,
                                           OdSmartPtr<OdDbIdMapping>& mapping);

}  // namespace vdmu
