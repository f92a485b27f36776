// Features that group entities of a drawing view.
#include "vdm_db/concrete_features/vdm_drafting_group_feature.h"

VDM_DEFINE_FEATURE_CLASS(VdmDraftingGroupFeature, VdmFeature, L"VdmDraftingGroupFeature")

bool VdmDraftingGroupFeature::canBeCloned(const OdDbIdMapping&) const { return false; }
