// VdmTrackingFeature: references that may disappear.
#pragma once

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Follows references, and outlives them: with the last reference of a reactor that reactor ends
/// and not the feature. A copy of entities does not take it along.
class VDM_DB_EXPORT VdmTrackingFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmTrackingFeature)

  [[nodiscard]] bool canBeCloned(const OdDbIdMapping& mapping) const override;
  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override;
};
