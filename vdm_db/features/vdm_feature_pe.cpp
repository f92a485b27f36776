// Protocol extensions of features.
#include "vdm_db/features/vdm_feature_pe.h"

#include "vdm_db/features/vdm_feature.h"

OD_RX_DEFINE_ABSTRACT(VdmFeaturePE, OdRxObject, L"VdmFeaturePE")
OD_RX_DEFINE_ABSTRACT(VdmFeatureExternalPE, OdRxObject, L"VdmFeatureExternalPE")
OD_RX_DEFINE_ABSTRACT(VdmFeatureColorPE, OdRxObject, L"VdmFeatureColorPE")

VdmFeaturePE::VdmFeaturePE() = default;
VdmFeaturePE::~VdmFeaturePE() = default;

void VdmFeaturePE::attach(const VdmFeature* feature) { m_feature = VdmFeaturePtr(feature); }

OdDbObjectId VdmFeaturePE::objectId() const {
  return m_feature.isNull() ? OdDbObjectId::kNull : m_feature->objectId();
}

OdSmartPtr<VdmFeatureExternalPE> VdmFeatureExternalPE::getFrom(const OdRxClass* cls) {
  if (cls == nullptr) return {};
  return VdmFeatureExternalPE::cast(cls->getX(VdmFeatureExternalPE::desc()).get());
}
