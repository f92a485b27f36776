// What mappings of clone operations say, and services around them.
#pragma once

#include <unordered_set>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "platform/ge/matrix3d.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;
class OdDbObject;
class OdRxClass;

namespace vdmu {

/// A long transaction is running in the drawing that the mapping's clones come from, or in the one
/// that they go to.
[[nodiscard]] VDM_DB_EXPORT bool isInLongTransaction(OdDbIdMapping& mapping);

/// Appends the pairs whose cloned object is exactly of the class, in the order of the mapping.
VDM_DB_EXPORT void getClonedObjectsByExactType(OdDbIdMapping& mapping, const OdRxClass* cls,
                                               OdArray<OdDbIdPair>& pairs);
/// The pairs whose value was made by cloning, in the order of the mapping.
[[nodiscard]] VDM_DB_EXPORT OdArray<OdDbIdPair> convertIdMapToArray(OdDbIdMapping& mapping);
/// Appends a pair from each id to itself, in rising handle order; null ids are left out.
VDM_DB_EXPORT void putObjectsToIdMap(const std::unordered_set<OdDbObjectId>& ids,
                                     OdArray<OdDbIdPair>& pairs);

/// The drawing that holds what a block reference shows: its own, or the external one while that is
/// loaded. Null for anything else than a reference to a block.
[[nodiscard]] VDM_DB_EXPORT OdDbDatabase* getBlockReferenceDefinitionDb(OdDbObjectId reference);

/// Erases the dictionaries, with their entries, that are entries of the named objects dictionary
/// under a key that begins with `prefix`, in any case. Nothing happens for an empty prefix.
VDM_DB_EXPORT void delDatabaseDictsBeginWith(OdDbDatabase* database, const OdString& prefix);

/// Takes the 2D constraint groups of a block where the matrix takes its geometry: those in its
/// network and in networks below that. Nothing happens for an object without a network. Raises what
/// the group refuses, as a singular matrix.
VDM_DB_EXPORT void transform2dConstraints(const OdDbObjectId& block, OdGeMatrix3d transform);

/// The ids that an object files as owned, in that order, null ones included.
[[nodiscard]] VDM_DB_EXPORT OdArray<OdDbObjectId> getOwnerships(const OdDbObject* object);

}  // namespace vdmu
