// VdmPropertiesPE: protocol under which other modules attach to property owners.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

// An interface without operations; a module attaches what it derives from it to a class.
class VDM_DB_EXPORT VdmPropertiesPE : public OdRxObject {
  OD_RX_DECLARE_MEMBERS(VdmPropertiesPE)
};
