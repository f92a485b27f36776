// VdmGroupFeature: entities under one name.
#pragma once

#include <unordered_set>

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_impl.h"

/// Binds entities, or pieces of them, under a name and a description. All are references of mask 1.
class VDM_DB_EXPORT VdmGroupFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmGroupFeature)

  using VdmFeature::init;
  /// Replaces what the group binds, and sets the status StatusInitialized.
  virtual void init(const OdDbFullSubentPathArray& paths);
  /// The first id of each path: an entity, or the block reference that leads to it.
  [[nodiscard]] std::unordered_set<OdDbObjectId> getTopEntities() const;

  /// Empty while none was set.
  [[nodiscard]] OdString description() const;
  /// eOk always.
  OdResult setDescription(const OdString& description);

  [[nodiscard]] const OdArray<int>& masks() const override;
};
using VdmGroupFeaturePtr = OdSmartPtr<VdmGroupFeature>;
