// Blocks: making, copying, swapping, and how references show them.
#pragma once

#include "platform/base/result.h"
#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "platform/ge/scale3d.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbBlockTableRecord;
class OdDbDatabase;
class OdDbSelectionFilter;

namespace vdmu {

/// An empty block "*U<number>" with the drawing's insert units. Null without a drawing or its block
/// table.
VDM_DB_EXPORT OdDbObjectId createEmptyAnonymousBlock(OdDbDatabase* database);
/// Whether the name begins with "*U". False for null.
[[nodiscard]] VDM_DB_EXPORT bool canBeMCADAnonymousBlock(const OdDbBlockTableRecord* block);

/// Clones the entities of `source` that the filter takes into the block `target` of the same
/// drawing; all of them without a filter, and never those through which drawing views show blocks.
/// `target` gets the insert units of `source`, of its drawing when that is the model space.
///
/// A null mapping is made, for the context of objects. It takes the pairs of the clones and of the
/// two blocks. With `deferXlation` the ids that the clones hold wait for a later operation of the
/// mapping. Returns what cloning returns; nothing changes on failure. Raises
/// OdError_NotThatKindOfClass for anything else than blocks.
VDM_DB_EXPORT OdResult cloneBlock(OdDbObjectId source, OdDbObjectId target, bool deferXlation,
                                  OdSmartPtr<OdDbIdMapping>& mapping, OdDbSelectionFilter* filter);
/// The same into a new anonymous block, with the origin, comments and associative actions of
/// `source`. Parameters are copied in the host's mode 3. Returns the new block; null, and nothing
/// changes, when `source` is null or cloning fails.
VDM_DB_EXPORT OdDbObjectId cloneBlock(OdDbObjectId source, bool deferXlation,
                                      OdSmartPtr<OdDbIdMapping>& mapping);
/// Clones the same entities, and what they need, into a block of another drawing: `target`, or a
/// new anonymous block of `database` with the insert units of `source`, when that is null. Records
/// that both drawings have by name are the target's. Returns the block; null, and nothing changes,
/// on failure.
VDM_DB_EXPORT OdDbObjectId wblockBlock(OdDbObjectId source, OdDbDatabase* database,
                                       bool deferXlation, OdSmartPtr<OdDbIdMapping> mapping,
                                       OdDbObjectId target);
/// The value of the id's pair in the mapping; null when it has none.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId findClone(const OdDbIdMapping& mapping, OdDbObjectId id);

/// Moves the entities of each block to the other; ids stay. eWrongObjectType when one of them is no
/// block, otherwise why they cannot move; nothing changes on failure.
VDM_DB_EXPORT OdResult swapBlocksContent(const OdDbObjectId& a, const OdDbObjectId& b);

[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getOwner(OdDbObjectId id);
/// The id itself when it is a block, else the nearest block among its owners; null without one.
/// Loads nothing.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getOwningBlock(OdDbObjectId id);
/// See OdDbBlockTableRecord::getBlockReferenceIds; empty for null.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray
getBlockReferenceIds(const OdDbBlockTableRecord* block, bool directOnly, bool forceValidity);

/// Scale factors of a block reference as the user sees them: without the part that converts from
/// the block's units to the drawing's. eWrongObjectType when the reference or its block is none,
/// eInvalidInput for a block without units and for factors within 1e-10 of 0.
VDM_DB_EXPORT OdResult getEffectiveBlockRefScale(OdDbObjectId reference, OdGeScale3d& scale);
/// The reverse. A block without units is taken as it is: its factors are the scale. eOnLockedLayer
/// for a reference on a locked layer.
VDM_DB_EXPORT OdResult setEffectiveBlockRefScale(OdDbObjectId reference, const OdGeScale3d& scale);

}  // namespace vdmu
