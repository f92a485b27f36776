// VdmRemappingOperationBracket: begin and end of a remapping operation of another module.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

namespace vdmu {

/// An interface without operations. The module that remaps derives a class from it, registers it
/// under the name "VdmRemappingOperationBracketImpl", and works in its constructor and destructor.
class VDM_DB_EXPORT VdmRemappingOperationBracket : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmRemappingOperationBracket)

  /// Null when no module has registered the class, which callers must accept.
  [[nodiscard]] static OdSmartPtr<VdmRemappingOperationBracket> create();
};

}  // namespace vdmu
