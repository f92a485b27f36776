// VdmSuppressFeature: a group whose entities can be switched off.
#pragma once

#include <map>

#include "platform/db/entity.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"
#include "vdm_db/features/vdm_db_expression_reactor.h"
#include "vdm_db/properties/db_typed_id.h"

/// A group whose entities can be switched off. While its status holds StatusSuppressed, its
/// entities are on the layer "*SUPPRESS", which is off and frozen, and the feature keeps their
/// former layers. The update pass leaves inserts on that layer out of the solids. The value of an
/// expression switches it: suppressed outside the interval from -1e-10 to 1e-10. The expression is
/// that of a variable, which belongs to the first VdmDbExpressionReactor of the feature and gives
/// it its name.
class VDM_DB_EXPORT VdmSuppressFeature : public VdmGroupFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(VdmSuppressFeature)

  using VdmGroupFeature::init;
  /// Replaces what the group binds, and suppresses it, with the expression "1" of a new variable,
  /// which gets the feature's name. A variable that cannot have that name remains anonymous.
  void init(const OdDbFullSubentPathArray& paths) override;

  /// That of the variable, also where it is anonymous; the feature's own without one.
  [[nodiscard]] OdString name() const override;
  /// Names the variable; the feature itself without one. Refused, with nothing changed: what
  /// OdDbAssocVariable::setName refuses.
  OdResult setName(const OdString& name) override;

  /// By the value of the expression; by the status without one.
  [[nodiscard]] bool isSuppressed() const;
  /// Null without one.
  [[nodiscard]] OdDbObjectId variableId() const;
  /// "1" without a variable.
  [[nodiscard]] OdString suppressExpression() const;
  /// The result of OdDbAssocVariable::setExpression; 417 without a variable.
  OdResult setSuppressExpression(const OdString& text);
  /// 5 for any other key than "suppress"; the result of moving the entities otherwise.
  OdResult onPropertyModified(const OdString& key, double value) override;
  /// Losing the expression ends the suppression, and the feature.
  void eraseReactor(OdDbObjectId reactor, int mask, int tag) override;

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
  [[nodiscard]] OdSmartPtr<VdmDbExpressionReactor> expressionReactor() const;
  void makeExpression();
  void updateFeaturesOfBlock() const;

  std::map<OdDbTypedId, OdDbTypedId> m_entityLayers;
};
using VdmSuppressFeaturePtr = OdSmartPtr<VdmSuppressFeature>;
