// Chains of result buffers.
#pragma once

#include "platform/filer/res_buf.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Releases the chain from its front, so that its length does not matter; the pointer is null then.
VDM_DB_EXPORT void clearRbSequence(OdSmartPtr<OdResBuf>& chain);

}  // namespace vdmu
