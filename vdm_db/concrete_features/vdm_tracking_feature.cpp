// Features that outlive their references.
#include "vdm_db/concrete_features/vdm_tracking_feature.h"

VDM_DEFINE_FEATURE_CLASS(VdmTrackingFeature, VdmFeature, L"VdmTrackingFeature")

bool VdmTrackingFeature::canBeCloned(const OdDbIdMapping&) const { return false; }
bool VdmTrackingFeature::isRequiredDependency(int, int) { return false; }
