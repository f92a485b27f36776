// VdmNameFeature: a name that a user gave to a persistent reference.
#pragma once

#include "platform/base/result.h"
#include "platform/db/subent.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Watches one reference (mask 1), or what it was split into, which keeps that in the drawing as
/// long as the feature is there.
/// The reference is not required: the name of a lost one stays and waits for its return. Takes no
/// part in update passes.
class VdmNameFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmNameFeature)

  static constexpr int kMask = 1;

  [[nodiscard]] const OdArray<int>& masks() const override;
  [[nodiscard]] bool isRequiredDependency(int mask, int tag) override;
  /// One; several where it was split, none when the dependency was erased.
  [[nodiscard]] OdDbObjectIdArray referenceIds() const;
};
using VdmNameFeaturePtr = OdSmartPtr<VdmNameFeature>;

namespace vdm_host {

/// Gives a name to what a path leads to; the reference is made in the path's first block when it is
/// not there. An empty name becomes "Reference_1" or the next free number. `feature` gets the
/// VdmNameFeature. Works within the caller's transaction. eInvalidInput for a path without
/// entities, eKeyNotFound when the reference cannot be made.
[[nodiscard]] OdResult nameReference(const OdDbFullSubentPath& path, const OdString& name,
                                     OdDbObjectId& feature);

}  // namespace vdm_host
