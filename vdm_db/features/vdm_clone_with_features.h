// Copies of entities that take along what features know about them.
#pragma once

#include "platform/base/result.h"
#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Clones entities of one block into `block`, of the same drawing or of another one, and with them
/// the features that are about nothing else. The laws:
///
/// 1. A feature is taken along when it lets itself be cloned, and each of its references leads to
///    an entity that is cloned. One without references is about something else and stays.
/// 2. A feature that makes an opening in a cloned solid takes the insert of the opening along.
/// 3. References, and the numbers that model objects keep for subentities, are copied with them.
///    Each copied entity that has references gets a model object of its own.
/// 4. Features get names as when they are made, unique by the naming policy. Constraints are
/// between entities and stay.
///
/// The mapping gets the pairs of all clones. Returns what cloning returns, and eInvalidInput for
/// entities of several blocks. On failure the drawing is as before, and the mapping serves no
/// further operation.
VDM_DB_EXPORT OdResult cloneWithFeatures(const OdDbObjectIdArray& entities,
                                         const OdDbObjectId& block, OdDbIdMapping& mapping);

}  // namespace vdmu
