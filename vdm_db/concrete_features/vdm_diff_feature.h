// VdmDiffFeature: entities that are taken away from a solid.
#pragma once

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"

/// A group that says what is taken away from a solid.
class VDM_DB_EXPORT VdmDiffFeature : public VdmGroupFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmDiffFeature)
};
