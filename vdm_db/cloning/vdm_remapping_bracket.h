// VdmRemappingOperationBracket: begin and end of a remapping operation of another module.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// An interface without operations: the module that remaps derives a class from it, under the name
/// "VdmRemappingOperationBracketImpl", and does its work when an object of that is made and goes.
class VDM_DB_EXPORT VdmRemappingOperationBracket : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmRemappingOperationBracket)

  /// Null when no module has registered the class, which callers must accept.
  [[nodiscard]] static OdSmartPtr<VdmRemappingOperationBracket> create();
};

}  // namespace vdmu
