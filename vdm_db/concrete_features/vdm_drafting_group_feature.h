// VdmDraftingGroupFeature: what a drawing view groups.
#pragma once

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Groups entities of a drawing view. A copy of entities does not take it along.
class VDM_DB_EXPORT VdmDraftingGroupFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmDraftingGroupFeature)

  [[nodiscard]] bool canBeCloned(const OdDbIdMapping& mapping) const override;
};
