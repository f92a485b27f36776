// Copies of entities that take along what features know about them.
//
// Everything is one clone operation with three groups of primary objects: the entities go to the
// block, their dependencies to its manager of persistent ids, the carriers to its feature manager.
// Carriers own their reactors, so these come along. Only the last group has the ids translated;
// by then every source has its pair, and the order of the groups does not matter to any reference.
// A reference of a taken feature leads to a cloned entity by the choice of features, so no clone
// refers to an entity of the original. It costs one walk over the features of the block for the
// inserts and one for the features.
#include "vdm_db/features/vdm_clone_with_features.h"

#include <algorithm>
#include <unordered_set>

#include "platform/db/database.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace {

using IdSet = std::unordered_set<OdDbObjectId>;

VdmUpdateFeatureInterface::OpeningFaces openingOf(const VdmFeature& feature) {
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(&feature);
  return active.isNull() ? VdmUpdateFeatureInterface::OpeningFaces() : active->openingFaces();
}

/// What is cloned, in the order in which it is found.
class Selection {
 public:
  Selection(const OdDbObjectIdArray& chosen, const OdDbIdMapping& mapping) : entities(chosen) {
    for (const OdDbObjectId& id : chosen) m_cloned.insert(id);
    const OdDbObjectId manager =
        VdmDbFeatureManager::getInstance(chosen.first().ownerId(), /*create=*/false);
    const VdmDbFeatureManagerPtr opened = manager.openAs<VdmDbFeatureManager>();
    if (opened.isNull()) return;
    for (VdmDbIterator<VdmFeature> it = opened->newFeatureIterator(); !it.done(); it.next()) {
      takeInsertOf(*it.object());
    }
    for (VdmDbIterator<VdmFeature> it = opened->newFeatureIterator(); !it.done(); it.next()) {
      take(*it.object(), it.objectId(), mapping);
    }
  }

  OdDbObjectIdArray entities;
  OdDbObjectIdArray dependencies;
  OdDbObjectIdArray carriers;

 private:
  void takeInsertOf(const VdmFeature& feature) {
    const VdmUpdateFeatureInterface::OpeningFaces opening = openingOf(feature);
    if (!opening.isValid() || opening.insertId().isErased()) return;
    if (m_cloned.count(opening.solidId()) == 0) return;
    if (m_cloned.insert(opening.insertId()).second) entities.append(opening.insertId());
  }

  void take(const VdmFeature& feature, const OdDbObjectId& carrier, const OdDbIdMapping& mapping) {
    const OdDbObjectIdArray ids = feature.getAllDependencies(/*filtered=*/false);
    const OdDbObjectIdArray leadTo = vdmEntitiesOf(ids);
    const VdmUpdateFeatureInterface::OpeningFaces opening = openingOf(feature);
    const auto isCloned = [this](const OdDbObjectId& id) { return m_cloned.count(id) != 0; };
    if (opening.isValid() ? !isCloned(opening.solidId()) : leadTo.isEmpty()) return;
    if (!std::all_of(leadTo.begin(), leadTo.end(), isCloned)) return;
    if (!feature.canBeCloned(mapping)) return;
    carriers.append(carrier);
    for (const OdDbObjectId& id : ids) {
      if (!id.isErased() && m_taken.insert(id).second) dependencies.append(id);
    }
  }

  IdSet m_cloned;
  IdSet m_taken;  // of the dependencies
};

/// One clone operation of several calls: within a drawing, or to another one.
class Cloning {
 public:
  Cloning(const OdDbObjectId& source, const OdDbObjectId& target, OdDbIdMapping& mapping)
      : m_source(source.originalDatabase()),
        m_target(target.originalDatabase()),
        m_mapping(mapping) {}

  OdResult clone(const OdDbObjectIdArray& ids, const OdDbObjectId& owner, bool isLast) {
    return m_source == m_target
               ? m_source->deepCloneObjects(ids, owner, m_mapping, /*deferXlation=*/!isLast)
               : m_source->wblockCloneObjects(ids, owner, m_mapping, OdDb::kDrcIgnore,
                                              /*deferXlation=*/!isLast);
  }

 private:
  OdDbDatabase* m_source;
  OdDbDatabase* m_target;
  OdDbIdMapping& m_mapping;
};

OdResult cloneAll(const Selection& selection, const OdDbObjectId& block, OdDbIdMapping& mapping) {
  Cloning cloning(selection.entities.first(), block, mapping);
  if (selection.carriers.isEmpty()) return cloning.clone(selection.entities, block, true);
  OdResult result = cloning.clone(selection.entities, block, /*isLast=*/false);
  if (result != eOk) return result;
  const OdDbObjectId references = VdmDbPersIdManager::getInstance(block, /*create=*/true);
  result = cloning.clone(selection.dependencies, references, /*isLast=*/false);
  if (result != eOk) return result;
  const OdDbObjectId features = VdmDbFeatureManager::getInstance(block, /*create=*/true);
  return cloning.clone(selection.carriers, features, /*isLast=*/true);
}

void attachReferences(const Selection& selection, const OdDbObjectId& block,
                      const OdDbIdMapping& mapping) {
  OdDbObjectIdArray clones(selection.dependencies.size());
  for (const OdDbObjectId& id : selection.dependencies) {
    clones.append(vdmu::findClone(mapping, id));
  }
  if (clones.isEmpty()) return;
  VdmDbPersIdManager::getInstance(block, /*create=*/false)
      .safeOpenAs<VdmDbPersIdManager>()
      ->attachToModelObjects(clones);
}

void copyAttributes(const OdDbObjectId& entity, const OdDbObjectId& clone) {
  const VdmDbObjectPtr from = VdmDbObject::openVdmDbObject(entity);
  const VdmDbObjectPtr to = VdmDbObject::openVdmDbObject(clone);
  if (from.isNull() || to.isNull() || !from->hasAttributes()) return;
  VdmIndexMap attributes = from->attributes();
  const VdmOpenUpgrade upgrade(to);
  to->setAttributes(attributes);
}

}  // namespace

OdResult vdmu::cloneWithFeatures(const OdDbObjectIdArray& entities, const OdDbObjectId& block,
                                 OdDbIdMapping& mapping) {
  if (entities.isEmpty()) return eOk;
  const OdDbObjectId from = entities.first().ownerId();
  const auto isElsewhere = [&from](const OdDbObjectId& id) { return id.ownerId() != from; };
  if (std::any_of(entities.begin(), entities.end(), isElsewhere)) return eInvalidInput;
  if (block.originalDatabase() == nullptr) return eNoDatabase;
  OdDbTransaction transaction(block.originalDatabase());
  const Selection selection(entities, mapping);
  const OdResult result = cloneAll(selection, block, mapping);
  if (result != eOk) return result;
  attachReferences(selection, block, mapping);
  for (const OdDbObjectId& id : selection.entities) {
    copyAttributes(id, vdmu::findClone(mapping, id));
  }
  return transaction.commit();
}
