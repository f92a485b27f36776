// VdmUpdateFeatureInterface: making of features, and solids without their openings.
#include "vdm_db/features/vdm_update_feature_interface.h"

#include <algorithm>

#include "platform/db/database.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_feature_manager_transaction.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_color_material.h"
#include "vdm_db/features/vdm_feature_group_faces.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"
#include "vdm_db/update/vdm_feature_guard.h"
#include "vdm_db/update/vdm_feature_subents_to_remove.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

using FeaturePtr = OdSmartPtr<VdmFeature>;
using ManagerPtr = OdSmartPtr<VdmDbFeatureManager>;

constexpr const char* kSource = "vdm_db/vdm_update_feature_interface";
constexpr int kUpdateLine = 613;

// Masks and tags of the references that new features get.
constexpr int kMask = 0;
constexpr int kTagBaseFace = 3;
constexpr int kMaskOfBaseFace = 1;
constexpr int kTagOfBaseFace = 1;

bool isFace(const OdDbFullSubentPath& path) {
  return path.subentId().type() == OdDb::kFaceSubentType;
}

// The manager of the drawing's model space, made if need be, with the material of feature colours.
ManagerPtr managerForNewFeatures(OdDbDatabase* database) {
  const OdDbObjectId id = vdmu::getObjInExtDict(database->getModelSpaceId(), kVdmFeatureManager,
                                                VdmDbFeatureManager::desc());
  vdmu::createFeatureColorMaterial(database);
  return id.openAs<VdmDbFeatureManager>(OdDb::kForWrite);
}

// The new feature, open for write; null for a class that makes none.
FeaturePtr addFeature(const ManagerPtr& manager, OdRxClass* cls) {
  const OdDbObjectId id = manager->createFeatureData(cls, OdString::kEmpty, false, false);
  return id.openAs<VdmFeature>(OdDb::kForWrite);
}

OdArray<VdmFeatureGroupFaces> groupsOfFeature(const OdDbFullSubentPath& basePath,
                                              const OdDbFullSubentPathArray* const (&sets)[3]) {
  OdArray<VdmFeatureGroupFaces> groups;
  if (isFace(basePath)) {
    groups.append(VdmFeatureGroupFaces(kMask, OdDbFullSubentPathArray{basePath}, kTagBaseFace));
  }
  for (int tag = 0; tag < 3; ++tag) groups.append(VdmFeatureGroupFaces(kMask, *sets[tag], tag));
  return groups;
}

// One feature for each entity. Their references are made together, at the end.
OdDbObjectIdArray addFeatures(const ManagerPtr& manager, const OdDbFullSubentPath& basePath,
                              OdUInt32 count, OdRxClass* cls) {
  OdDbObjectIdArray ids(count);
  const OdSmartPtr<VdmDbFeatureManagerTransaction> references =
      VdmDbFeatureManagerTransaction::createObject();
  OdArray<VdmFeatureGroupFaces> groups;
  if (isFace(basePath)) {
    groups.append(
        VdmFeatureGroupFaces(kMaskOfBaseFace, OdDbFullSubentPathArray{basePath}, kTagOfBaseFace));
  }
  for (OdUInt32 i = 0; i < count; ++i) {
    const FeaturePtr feature = addFeature(manager, cls);
    if (!feature.isNull()) feature->init(groups);
    ids.append(feature.isNull() ? OdDbObjectId::kNull : feature->getDbObject()->objectId());
  }
  return ids;
}

void eraseCarrier(const OdDbObjectId& id) {
  const OdDbObjectPtr carrier = id.openObject(OdDb::kForWrite);
  if (!carrier.isNull()) carrier->erase();
}

template <class T>
bool hasClass(const OdSmartPtr<T>& object, const OdRxClass* cls) {
  const OdRxObjectPtr found(object->queryX(cls), kOdRxObjAttach);
  return !found.isNull();
}

// The active features of a class on the entity, of all classes for null.
OdDbObjectIdArray activeFeatures(const OdDbObjectId& entity, const OdRxClass* cls) {
  OdDbObjectIdArray kept;
  for (const OdDbObjectId& id : VdmFeatureManagerUtils::getFeatures(entity, {})) {
    const FeaturePtr feature = id.openAs<VdmFeature>();
    if (feature.isNull() || (cls != nullptr && !hasClass(feature, cls))) continue;
    if (!VdmUpdateFeatureInterface::activeOf(feature).isNull()) kept.append(id);
  }
  return kept;
}

void copyFirst(const VdmFeatureUpdateData::SolidsBySource& from,
               VdmUpdateFeatureInterface::Solids* to) {
  if (to != nullptr && !from.empty()) *to = from.begin()->second;
}

}  // namespace

OdDbObjectIdArray VdmUpdateFeatureInterface::createFeaturesEx(const OdDbFullSubentPath& basePath,
                                                              const OdDbObjectIdArray& entities,
                                                              OdRxClass* cls) {
  return createFeatures(basePath, entities, cls);
}

OdDbObjectId VdmUpdateFeatureInterface::createFeature(
    OdDbObjectId solid, const OdDbFullSubentPath& basePath, OdDbFullSubentPathArray& set0,
    OdDbFullSubentPathArray& set1, OdDbFullSubentPathArray& set2, OdRxClass* cls) {
  const OdDbObjectId first = vdmu::getInsertId(basePath);
  if (first.isNull() || solid.isNull() || first.database() == nullptr) return {};
  const ManagerPtr manager = managerForNewFeatures(first.database());
  if (manager.isNull()) return {};
  const OdSmartPtr<VdmDbFeatureManagerTransaction> references =
      VdmDbFeatureManagerTransaction::createObject();
  const FeaturePtr feature = addFeature(manager, cls);
  if (feature.isNull()) return {};
  feature->init(groupsOfFeature(basePath, {&set0, &set1, &set2}));
  if (const auto found = cast(feature.get()); !found.isNull()) {
    found->setEntities(OdDbObjectIdArray{solid});
    found->attachToSolid(manager, solid);
  }
  return feature->getDbObject()->objectId();
}

OdDbObjectIdArray VdmUpdateFeatureInterface::createFeatures(const OdDbFullSubentPath& basePath,
                                                            const OdDbObjectIdArray& entities,
                                                            OdRxClass* cls) {
  const OdDbObjectId first = vdmu::getInsertId(basePath);
  if (entities.isEmpty() || first.isNull() || first.database() == nullptr) return {};
  const ManagerPtr manager = managerForNewFeatures(first.database());
  if (manager.isNull()) return {};
  OdDbObjectIdArray ids = addFeatures(manager, basePath, entities.size(), cls);

  VdmFeatureUpdateData data(manager);
  OdDbObjectIdArray accepted(ids.size());
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    const bool isAccepted = vdmGuardFeature(ids[i], data.observer(), [&] {
      const FeaturePtr feature = ids[i].openAs<VdmFeature>();
      const auto found = cast(feature.get());
      return !found.isNull() && found->createForEntity(manager, basePath, entities[i], data);
    });
    if (isAccepted) {
      accepted.append(ids[i]);
      continue;
    }
    eraseCarrier(ids[i]);
    ids[i] = OdDbObjectId::kNull;
  }
  if (accepted.isEmpty()) return ids;
  const bool res = manager->update(accepted, data);
  vdmAssert(res, "res", OdString::kEmpty, kSource, kUpdateLine);
  return ids;
}

OdSmartPtr<OdDbEntity> VdmUpdateFeatureInterface::getGrossSolid(OdDbObjectId entityId,
                                                                OdRxClass* cls, Solids* subtractors,
                                                                Solids* uniters) {
  const OdDbEntityPtr entity = entityId.openAs<OdDbEntity>();
  if (entity.isNull()) return {};
  const OdDbEntityPtr clone = OdDbEntity::cast(entity->clone());
  if (clone.isNull()) return {};
  const ManagerPtr manager = vdmu::getObjInExtDict(entity->ownerId(), kVdmFeatureManager, nullptr)
                                 .openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return clone;
  const OdDbObjectIdArray kept = activeFeatures(entityId, cls);
  if (kept.isEmpty()) return clone;

  VdmFeatureUpdateData data(manager);
  data.initGrossData(kept);
  VdmFeatureSubentsToRemove record(entityId);
  record.entity = clone;
  data.removeUnusedGeometry(record);
  copyFirst(data.getSubtractorsOnLayers(entityId), subtractors);
  copyFirst(data.getUnitersOnLayers(entityId), uniters);
  return clone;
}
