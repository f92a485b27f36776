// The bracket of remapping operations.
#include "vdm_db/cloning/vdm_remapping_operation_bracket.h"

namespace vdmu {

OD_RX_DEFINE_ABSTRACT(VdmRemappingOperationBracket, OdRxObject, L"VdmRemappingOperationBracket")

OdSmartPtr<VdmRemappingOperationBracket> VdmRemappingOperationBracket::create() {
  const OdRxClass* cls = odrxClassDictionary()->getAt(L"VdmRemappingOperationBracketImpl");
  if (cls == nullptr) return {};
  return VdmRemappingOperationBracket::cast(cls->create().get());
}

}  // namespace vdmu
