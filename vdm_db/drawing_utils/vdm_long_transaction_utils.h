// Long transactions of drawings.
#pragma once

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// The long transaction that is running in the drawing. Null without one, without a drawing, and
/// when the host has no manager of them.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getLongTransaction(OdDbDatabase* database);
[[nodiscard]] VDM_DB_EXPORT bool isInLongTransaction(OdDbDatabase* database);

}  // namespace vdmu
