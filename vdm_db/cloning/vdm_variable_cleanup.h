// Removing variables that nothing uses.
#pragma once

#include "platform/cloning/id_mapping.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// Takes those of the variables out of their networks, and erases them, that nothing uses: no
/// persistent reactor counts by assocVariableReactorIsValid. A variable that only such ones use is
/// not used either. Whatever is not exactly an OdDbAssocVariable is left alone.
VDM_DB_EXPORT void cleanUnusedVariables(const OdArray<OdDbObjectId>& ids);
/// Of the clones of a mapping.
VDM_DB_EXPORT void cleanUnusedVariables(OdDbIdMapping& mapping);
/// Of a block. The number is not used.
VDM_DB_EXPORT void cleanUnusedVariables(OdDbObjectId block, int reserved);

}  // namespace vdmu
