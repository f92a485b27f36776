// Groups that say what is taken away from a solid.
#include "vdm_db/concrete_features/vdm_diff_feature.h"

VDM_DEFINE_FEATURE_CLASS(VdmDiffFeature, VdmGroupFeature, L"VdmDiffFeature")
