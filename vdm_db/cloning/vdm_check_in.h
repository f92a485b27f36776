// Check-in of managers when a long transaction ends.
#pragma once

#include <functional>
#include <vector>

#include "platform/cloning/long_transaction_man.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// The manager of a block; with `create` a missing one is made. Null without one.
using VdmManagerLookup = std::function<OdDbObjectId(const OdDbObjectId& block, bool create)>;

/// Moves the contents of managers back when a long transaction is checked in: the manager of the
/// origin block takes over the state of what the manager of the destination block has become, and
/// keeps its id; so does each object that it owns and that was checked out with it or has a place
/// of its own there. What they held before goes to their counterparts, which die with the copies.
///
/// To be called while the transaction has an active id map; nothing happens without one. `pairs`
/// leads from originals to their copies, as the map of the check-out did (convertIdMapToArray). A
/// manager without counterpart stays as it is. A lookup that is empty raises
/// std::bad_function_call; a state that cannot be read raises OdError, and the caller's transaction
/// takes all back.
VDM_DB_EXPORT void checkInObjects(OdDbLongTransaction& transaction,
                                  const OdArray<OdDbIdPair>& pairs,
                                  const std::vector<VdmManagerLookup>& lookups);

}  // namespace vdmu
