// Associative actions of blocks: listing and cloning.
#pragma once

#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;

namespace vdmu {

/// The actions of the block's network, in their order; empty without one.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getAssocActions(const OdDbObjectId& block);

/// Clones actions of the drawing `database` into the network of `block`, which is made when need
/// be; `block` may lie in another drawing, whose objects of equal names are used there. Actions
/// that have a clone in the mapping are not cloned again. With `deferXlation` the ids of the
/// clones wait for a later operation of the mapping. Returns what cloning returns; eOk, and
/// nothing happens, without a drawing, a block or, when deferring, actions.
VDM_DB_EXPORT OdResult cloneAssocActions(OdDbDatabase* database, const OdDbObjectIdArray& ids,
                                         const OdDbObjectId& block, OdDbIdMapping& mapping,
                                         bool deferXlation);
/// For a clone hook: the running operation translates the ids.
VDM_DB_EXPORT OdResult cloneAssocActionsInsideCloning(const OdDbObjectIdArray& ids,
                                                      const OdDbObjectId& block,
                                                      OdDbIdMapping& mapping);
/// The same, each into the clone of its own block; actions of blocks without one are left out.
VDM_DB_EXPORT OdResult cloneAssocActionsInsideCloning(const OdDbObjectIdArray& ids,
                                                      OdDbIdMapping& mapping);

}  // namespace vdmu
