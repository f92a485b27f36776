// The protocol extension of other modules' protocols.
#include "vdm_db/features/vdm_feature_external_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmFeatureExternalPE, OdRxObject, L"VdmFeatureExternalPE")

OdSmartPtr<VdmFeatureExternalPE> VdmFeatureExternalPE::getFrom(const OdRxClass* cls) {
  if (cls == nullptr) return {};
  return VdmFeatureExternalPE::cast(cls->getX(VdmFeatureExternalPE::desc()).get());
}
