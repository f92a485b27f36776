// VdmParameterCopyModeElevate: the host's mode of copying parameters, for a scope.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/base/types.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;

namespace vdmu {

/// Sets the parameter copy mode of the drawing's host services to 3 and puts the old one back at
/// its end. Lives on the stack of its user, within the life of the drawing. Null is legal: nothing
/// happens then.
class VDM_DB_EXPORT VdmParameterCopyModeElevate : OdNonCopyable {
 public:
  explicit VdmParameterCopyModeElevate(OdDbDatabase* database);
  ~VdmParameterCopyModeElevate();

 private:
  OdInt16 m_previous = 0;
  OdDbDatabase* m_database;
};

}  // namespace vdmu
