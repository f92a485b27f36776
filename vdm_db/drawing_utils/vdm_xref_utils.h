// Blocks of external references.
#pragma once

#include "platform/db/block_table_record.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Closes the block's external drawing and keeps its path. The drawing's notifications about
/// external references are off during that. Nothing happens for null.
VDM_DB_EXPORT void unloadXrefBlock(OdSmartPtr<OdDbBlockTableRecord> block);
/// Unloads and erases the block of an external reference that no block reference shows; every
/// other block is left alone.
VDM_DB_EXPORT void eraseXrefBlock(OdDbObjectId id);
/// The model space of the block's external drawing while that is loaded, otherwise the id itself.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getXrefBlock(OdDbObjectId id);
/// Opens the block that getXrefBlock gives; null when it cannot be opened. External drawings are
/// read-only and cannot be opened for write.
[[nodiscard]] VDM_DB_EXPORT OdSmartPtr<OdDbBlockTableRecord> openXrefBlock(OdDbObjectId id,
                                                                           bool forWrite);

}  // namespace vdmu
