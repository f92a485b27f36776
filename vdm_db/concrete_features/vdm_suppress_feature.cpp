// Features that switch entities off by a frozen layer.
//
// Switching off moves the entities to that layer and notes where each was; switching on moves them
// back and forgets the notes. The note is the layer that the entity is on, also where that is the
// frozen layer itself: an entity of two such features is noted there by the second. One entity that
// cannot be moved does not keep the others from being moved.
#include "vdm_db/concrete_features/vdm_suppress_feature.h"

#include <algorithm>
#include <vector>

#include "platform/assoc/assoc_variable.h"
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/locked_layers.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_layer_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_results.h"
#include "vdm_db/references/vdm_path_utils.h"

VDM_DEFINE_FEATURE_CLASS(VdmSuppressFeature, VdmGroupFeature, L"VdmSuppressFeature")

namespace {

constexpr double kZeroTolerance = 1e-10;  // of the expression's value; it counts as zero itself
constexpr double kSuppressedValue = 1.0;

bool isSuppressing(double value) { return value > kZeroTolerance || value < -kZeroTolerance; }

OdDbObjectId suppressLayerOf(const OdDbDatabase* database) {
  return vdmu::findOrAddLayer(database, kVdmSuppressLayer, [](OdDbLayerTableRecord& layer) {
    layer.setIsOff(true);
    layer.setIsFrozen(true);
  });
}

/// Calls `move` for each entity, open for write also on a locked layer, in the order of handles;
/// the last failure.
template <class Move>
OdResult moveEntities(const std::unordered_set<OdDbObjectId>& entities, const Move& move) {
  std::vector<OdDbObjectId> ordered(entities.begin(), entities.end());
  std::sort(ordered.begin(), ordered.end(), vdmu::ObjectIdLess());
  OdResult failure = eOk;
  for (const OdDbObjectId& id : ordered) {
    try {
      const OdDbLockedLayerAccess access(id.database());
      const OdDbEntityPtr entity = OdDbEntity::cast(id.safeOpenObject(OdDb::kForWrite));
      if (entity.isNull()) {
        failure = eWrongObjectType;
      } else {
        move(entity);
      }
    } catch (const OdError& error) {
      failure = error.code();
    }
  }
  return failure;
}

}  // namespace

void VdmSuppressFeature::subMapProperties(VdmProperties& bag) {
  VdmGroupFeature::subMapProperties(bag);
  bag.mapProperty(kVdmEntLayerKey, &m_entityLayers);
}

void VdmSuppressFeature::init(const OdDbFullSubentPathArray& paths) {
  VdmGroupFeature::init(paths);
  setStatus(StatusSuppressed);
  setFrozenLayer();
  makeExpression();
}

// ---- The expression

VdmDbExpressionReactorPtr VdmSuppressFeature::expressionReactor() const {
  for (const OdDbObjectId& id : reactorIds()) {
    if (vdmu::isIdOf<VdmDbExpressionReactor>(id)) return id.openAs<VdmDbExpressionReactor>();
  }
  return {};
}

// A name that no variable can have, or another one has, leaves the variable anonymous.
void VdmSuppressFeature::makeExpression() {
  const auto reactor = addReactor(VdmDbExpressionReactor::desc(), /*mask=*/-1)
                           .openAs<VdmDbExpressionReactor>(OdDb::kForWrite);
  if (reactor.isNull()) return;
  reactor->setPropertyName(kVdmSuppress);
  reactor->setInitialValue(kSuppressedValue);
  reactor->setExpression(kVdmSuppressOn, /*reacts=*/true);
  reactor->renameVariable(VdmFeature::name());
  reactor->setExpression(kVdmSuppressOn, /*reacts=*/true);
}

OdDbObjectId VdmSuppressFeature::variableId() const {
  const VdmDbExpressionReactorPtr reactor = expressionReactor();
  return reactor.isNull() ? OdDbObjectId::kNull : reactor->assocVariable();
}

OdString VdmSuppressFeature::suppressExpression() const {
  const auto variable = variableId().openAs<OdDbAssocVariable>();
  return variable.isNull() ? kVdmSuppressOn : variable->expression();
}

OdResult VdmSuppressFeature::setSuppressExpression(const OdString& text) {
  const auto variable = variableId().openAs<OdDbAssocVariable>(OdDb::kForWrite);
  return variable.isNull() ? kVdmNoFeature
                           : variable->setExpression(text, OdString::kEmpty,
                                                     /*checkForCyclicalDependencies=*/false,
                                                     /*updateDependenciesOnOtherVariables=*/true);
}

OdString VdmSuppressFeature::name() const {
  const auto variable = variableId().openAs<OdDbAssocVariable>();
  return variable.isNull() ? VdmFeature::name() : variable->name();
}

OdResult VdmSuppressFeature::setName(const OdString& name) {
  if (const auto variable = variableId().openAs<OdDbAssocVariable>(OdDb::kForWrite);
      !variable.isNull()) {
    return variable->setName(name, /*updateReferencingExpressions=*/true);
  }
  return VdmFeature::setName(name);
}

bool VdmSuppressFeature::isSuppressed() const {
  const VdmDbExpressionReactorPtr reactor = expressionReactor();
  if (reactor.isNull()) return (getStatus() & StatusSuppressed) != 0;
  return isSuppressing(reactor->value());
}

void VdmSuppressFeature::eraseReactor(OdDbObjectId reactor, int mask, int tag) {
  if (!vdmu::isIdOf<VdmDbExpressionReactor>(reactor)) {
    return VdmGroupFeature::eraseReactor(reactor, mask, tag);
  }
  if (!reactorIds().contains(reactor)) return;
  restoreLayers();
  assertWritable()->erase();
}

// ---- Switching

OdResult VdmSuppressFeature::onPropertyModified(const OdString& key, double value) {
  if (key != kVdmSuppress) return kVdmNotSuppressing;
  const bool wanted = isSuppressing(value);
  if (wanted == ((getStatus() & StatusSuppressed) != 0)) return eOk;
  setStatus(wanted ? StatusSuppressed : Status{});
  return wanted ? setFrozenLayer() : restoreLayers();
}

OdResult VdmSuppressFeature::setFrozenLayer() {
  OdDbObject* carrier = getDbObject();
  OdDbDatabase* database = carrier == nullptr ? nullptr : carrier->database();
  if (database == nullptr) return kVdmNotSuppressing;
  const OdDbObjectId layer = suppressLayerOf(database);
  if (layer.isNull()) return kVdmNotSuppressing;
  carrier->assertWriteEnabled();
  const OdResult result = moveEntities(getTopEntities(), [&](const OdDbEntityPtr& entity) {
    m_entityLayers[{entity->objectId(), OdDb::kSoftPointerRef}] = {entity->layerId(),
                                                                   OdDb::kSoftPointerRef};
    entity->setLayer(layer);
  });
  updateFeaturesOfBlock();
  return result;
}

OdResult VdmSuppressFeature::restoreLayers() {
  OdDbObject* carrier = getDbObject();
  OdDbDatabase* database = carrier == nullptr ? nullptr : carrier->database();
  if (database == nullptr) return kVdmNotSuppressing;
  const OdResult result = moveEntities(getTopEntities(), [&](const OdDbEntityPtr& entity) {
    const auto kept = m_entityLayers.find({entity->objectId(), OdDb::kSoftPointerRef});
    const bool isKnown = kept != m_entityLayers.end() && !kept->second.id.isErased();
    entity->setLayer(isKnown ? kept->second.id : database->getLayerZeroId());
  });
  carrier->assertWriteEnabled();
  m_entityLayers.clear();
  updateFeaturesOfBlock();
  return result;
}

void VdmSuppressFeature::updateFeaturesOfBlock() const {
  const auto manager = featureManagerId().openAs<VdmDbFeatureManager>(OdDb::kForWrite);
  if (!manager.isNull()) manager->update(manager->getFeatures({VdmFeature::desc()}));
}

bool VdmSuppressFeature::isEntitySuppressed(const OdDbEntityPtr& entity) {
  return !entity.isNull() && entity->layer() == kVdmSuppressLayer;
}
