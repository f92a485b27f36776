// The protocol extension of other modules' protocols.
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_external_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbSheetMetalContextExternalPE, OdRxObject,
                      L"VdmDbSheetMetalContextExternalPE")

OdSmartPtr<VdmDbSheetMetalContextExternalPE> VdmDbSheetMetalContextExternalPE::getFrom(
    const OdRxClass* cls) {
  if (cls == nullptr || desc() == nullptr) return {};
  return cast(cls->getX(desc()).get());
}
