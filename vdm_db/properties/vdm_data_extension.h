// VdmDataExtension: base of data that other modules keep beside the module's objects.
#pragma once

#include "vdm_db/common/vdm_db_export.h"

// Has no state. The module that derives from it owns the objects.
class VDM_DB_EXPORT VdmDataExtension {
 public:
  VdmDataExtension();
  VdmDataExtension(const VdmDataExtension& other);
  VdmDataExtension& operator=(const VdmDataExtension& other);
  virtual ~VdmDataExtension();
};
