// Protocol extensions that are bound to one feature.
#include "vdm_db/features/vdm_feature_pe.h"

#include "vdm_db/features/vdm_feature.h"

OD_RX_DEFINE_ABSTRACT(VdmFeaturePE, OdRxObject, L"VdmFeaturePE")

VdmFeaturePE::VdmFeaturePE() = default;
VdmFeaturePE::~VdmFeaturePE() = default;

void VdmFeaturePE::attach(const VdmFeature* feature) { m_feature = VdmFeaturePtr(feature); }

OdDbObjectId VdmFeaturePE::objectId() const {
  return m_feature.isNull() ? OdDbObjectId::kNull : m_feature->objectId();
}
