// Persistent id managers and model objects: who lists which dependency.
#include "vdm_db/model/vdm_db_pers_id_manager.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_block_managers.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager_impl.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

/// Dependencies by the entities at the tops of their paths, both in the order of first sight.
class DependenciesByEntity {
 public:
  DependenciesByEntity(const OdDbObjectIdArray& dependencies, bool withErased) {
    for (const OdDbObjectId& id : dependencies) add(id, withErased);
  }
  [[nodiscard]] const std::vector<std::pair<OdDbObjectId, OdDbObjectIdArray>>& groups() const {
    return m_groups;
  }

 private:
  void add(const OdDbObjectId& id, bool withErased) {
    const VdmDbObjectDependencyPtr dependency =
        id.openAs<VdmDbObjectDependency>(OdDb::kForRead, withErased);
    if (dependency.isNull()) return;
    const OdDbObjectId entity = dependency->getInsertId();
    if (entity.isNull()) return;
    const auto [group, isNew] = m_places.try_emplace(entity, m_groups.size());
    if (isNew) m_groups.emplace_back(entity, OdDbObjectIdArray());
    m_groups[group->second].second.append(id);
  }

  std::vector<std::pair<OdDbObjectId, OdDbObjectIdArray>> m_groups;
  std::unordered_map<OdDbObjectId, std::size_t> m_places;
};

}  // namespace

OdDbObjectId VdmDbPersIdManager::constraintManagerId() const {
  return VdmModelObjectRegistry::ofBlock(blockId(), /*create=*/true);
}

// A block without one gets it with its first dependency, see attach(). Asking with `create` links
// the one that is there under the root manager.
OdDbObjectId VdmDbPersIdManager::presentConstraintManager() const {
  const OdDbObjectId present = VdmModelObjectRegistry::ofBlock(blockId(), /*create=*/false);
  return present.isNull() ? present : constraintManagerId();
}

void VdmDbPersIdManager::ensureModelObjects(const OdDbFullSubentPathArray& paths) const {
  OdDbObjectId manager;
  bool isLookedUp = false;
  std::unordered_set<OdDbObjectId> met{OdDbObjectId::kNull};
  for (const OdDbFullSubentPath& path : paths) {
    const OdDbObjectId entity = vdmu::getInsertId(path);
    if (!met.insert(entity).second) continue;
    if (!isLookedUp) manager = presentConstraintManager();
    isLookedUp = true;
    VdmDbObject::getInstance(entity, manager);
  }
}

void VdmDbPersIdManager::attach(const OdDbObjectIdArray& dependencies) const {
  if (dependencies.isEmpty()) return;
  const OdDbObjectId manager = constraintManagerId();
  const DependenciesByEntity byEntity(dependencies, /*withErased=*/false);
  for (const auto& [entity, ids] : byEntity.groups()) {
    const VdmDbObjectPtr object = VdmDbObject::getInstance(entity, manager).openAs<VdmDbObject>();
    if (object.isNull()) continue;
    const VdmOpenUpgrade upgrade(object);
    if (object->addPersIdDependencies(ids) != 0) {
      object->notifyAboutModifications(/*modified=*/true);
    }
  }
}

void VdmDbPersIdManager::detach(const OdDbObjectIdArray& dependencies) {
  const DependenciesByEntity byEntity(dependencies, /*withErased=*/true);
  for (const auto& [entity, ids] : byEntity.groups()) {
    const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(entity);
    if (object.isNull()) continue;
    const VdmOpenUpgrade upgrade(object);
    object->removePersIdDependencies(ids);
  }
}

// A dependency that refers to another entity than before is listed with the other model object.
void VdmDbPersIdManager::relist(const OdDbObjectIdArray& ids,
                                const OdDbObjectIdArray& entitiesBefore) const {
  OdDbObjectIdArray moved;
  std::map<OdDbObjectId, OdDbObjectIdArray, vdmu::ObjectIdLess> left;
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    const VdmDbObjectDependencyPtr dependency = ids[i].openAs<VdmDbObjectDependency>();
    if (dependency.isNull() || dependency->getInsertId() == entitiesBefore[i]) continue;
    moved.append(ids[i]);
    left[entitiesBefore[i]].append(ids[i]);
  }
  for (const auto& [entity, dependencies] : left) {
    const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(entity);
    if (object.isNull()) continue;
    const VdmOpenUpgrade upgrade(object);
    object->removePersIdDependencies(dependencies);
  }
  attach(moved);
}

void VdmDbPersIdManager::attachDepsToVdmDbObjects() const {
  attach(implForRead().dependencies.ids());
}

// ---- Audit

void VdmDbPersIdManager::doAudit() {
  assertWriteEnabled(/*autoUndo=*/false);
  removeDependencies(getUnusedDependencies());
  dropLostIds();
  attachDepsToVdmDbObjects();
  auditModelObjects();
}

void VdmDbPersIdManager::dropLostIds() {
  takeOut(m_impl->dependencies.positionsWhere(
      [](const OdDbObjectId& id) { return id.openAs<VdmDbObjectDependency>().isNull(); }));
}

// doAudit() has listed each dependency with the model object of its entity. Anything else in those
// lists is stale.
void VdmDbPersIdManager::auditModelObjects() const {
  const DependenciesByEntity byEntity(m_impl->dependencies.ids(), /*withErased=*/false);
  for (const auto& group : byEntity.groups()) {
    const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(group.first);
    if (object.isNull()) continue;
    const VdmOpenUpgrade upgrade(object);
    object->removeStalePersIdDependencies();
  }
}
