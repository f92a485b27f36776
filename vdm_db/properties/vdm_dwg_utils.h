// Marks, id arrays and the old property map of streams.
#pragma once

#include "platform/base/result.h"
#include "platform/filer/dwg_filer.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmProperties;

namespace vdmu {

// Marks separate the parts of undo and copy streams; a file filer (filerType 0) has none. A
// mark that is not the expected one raises OdError.
VDM_DB_EXPORT void wrMark(OdDbDwgFiler* filer, short mark);
VDM_DB_EXPORT void rdMark(OdDbDwgFiler* filer, short mark);

// The count by wrInt32, then each id by its primitive. Reading drops null ids; it raises
// OdError(eCorruptData) for a count that does not fit the stream.
VDM_DB_EXPORT void writeHardOwnershipIdArray(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids);
VDM_DB_EXPORT void writeSoftPointerIdArray(OdDbDwgFiler* filer, const OdDbObjectIdArray& ids);
VDM_DB_EXPORT void readHardOwnershipIdArray(OdDbDwgFiler* filer, OdDbObjectIdArray& ids);
VDM_DB_EXPORT void readSoftPointerIdArray(OdDbDwgFiler* filer, OdDbObjectIdArray& ids);

// The map of early files, in which every property is a string: a count by rdInt32, then pairs of
// key and value by rdString. Three keys are orientations of angle arguments, "Negative" or
// anything else; they become one string of '-' and '+' under "AngleArgsOrientation". eCorruptData
// where the pairs cannot be read; the properties that were read until then stay.
VDM_DB_EXPORT OdResult dwgInOldPropertyMap(OdDbDwgFiler* filer, VdmProperties& properties);

}  // namespace vdmu
