// VdmSuppressFeature: a group whose entities can be switched off.
#pragma once

#include <map>

#include "platform/db/entity.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"
#include "vdm_db/properties/db_typed_id.h"

/// A group whose entities can be switched off. While its status holds StatusSuppressed, its
/// entities are on the layer "*SUPPRESS", which is off and frozen, and the feature keeps their
/// former layers. The update pass leaves inserts on that layer out of the solids. The value of the
/// property "suppress" switches it: suppressed outside the interval from -1e-10 to 1e-10.
class VDM_DB_EXPORT VdmSuppressFeature : public VdmGroupFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmSuppressFeature)

  using VdmGroupFeature::init;
  /// Replaces what the group binds, and suppresses it.
  void init(const OdDbFullSubentPathArray& paths) override;

  [[nodiscard]] bool isSuppressed() const;
  /// 5 for any other key than "suppress"; the result of moving the entities otherwise.
  OdResult onPropertyModified(const OdString& key, double value) override;

  /// Moves the entities to the layer, which is made when it is missing, and back to their own; to
  /// layer "0" where that is unknown or erased. Then all features of the block are updated. An
  /// entity that cannot be moved does not stop the walk: the last result that is not eOk is
  /// returned. 5 without a database.
  OdResult setFrozenLayer();
  OdResult restoreLayers();

  /// False for null.
  [[nodiscard]] static bool isEntitySuppressed(const OdDbEntityPtr& entity);

  void subMapProperties(VdmProperties& bag) override;

 private:
  void updateFeaturesOfBlock() const;

  std::map<OdDbTypedId, OdDbTypedId> m_entityLayers;
};
using VdmSuppressFeaturePtr = OdSmartPtr<VdmSuppressFeature>;
