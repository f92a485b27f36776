// Constraints that are made in a batch.
//
// createConstraints() has two passes over the arguments. The first notes for each entity the paths
// that lead into it, each path once, and for each path the arguments that want it. The second opens
// each entity's model object once and lets it make all dependencies of that entity together; they
// are then handed to the arguments. So n arguments cost n look-ups, however many constraints share
// an entity or a path. Entities and paths keep the order of their first use, which makes the
// handles of new objects repeatable.
#include "vdm_db/constraints/vdm_constraint_manager_services.h"

#include <unordered_map>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/references/vdm_path_hash.h"
#include "vdm_db/references/vdm_path_utils.h"

// ---- What a solver's module does

VdmConstraintManagerServices::~VdmConstraintManagerServices() = default;

OdResult VdmConstraintManagerServices::attachIndexesToArgs(OdSmartPtr<VdmDbAssemblyPE>,
                                                           const OdArray<OdDbFullSubentPath>&,
                                                           const OdArray<OdDbObjectId>&, bool) {
  return eOk;
}

void VdmConstraintManagerServices::updateDatabase(OdSmartPtr<VdmDbAssemblyPE>, OdDbDatabase*) {}

// ---- Appending

namespace {

/// The block of the entity that the first argument leads to; null when it leads to none.
OdDbObjectId blockOf(const VdmExtendedPathArray& args) {
  if (args.isEmpty()) return OdDbObjectId::kNull;
  const auto entity = vdmu::getInsertId(args[0].path).openAs<OdDbEntity>();
  return entity.isNull() ? OdDbObjectId::kNull : entity->ownerId();
}

}  // namespace

OdString VdmConstraintManagerServices::appendConstraint(OdLong type,
                                                        const VdmExtendedPathArray& args,
                                                        double value, const OdString& name,
                                                        bool flag) {
  const OdDbObjectId block = blockOf(args);
  if (block.isNull()) return {};
  const auto manager = VdmDbConstraintManager::getInstance(block, /*create=*/true)
                           .safeOpenAs<VdmDbConstraintManager>(OdDb::kForWrite);
  const VdmConstraintPtr constraint = manager->makeConstraint(type, name, flag);
  try {
    manager->setFirstValue(constraint, value);
  } catch (...) {
    manager->removeConstraint(constraint);
    throw;
  }
  m_pending.push_back({{args.begin(), args.end()}, constraint, {}});
  return constraint->name();
}

// ---- Creating

/// What a batch asks of its entities, and where the answers belong.
class VdmConstraintManagerServices::Batch {
 public:
  struct Place {
    std::size_t entry;
    std::size_t argument;
  };
  struct Wanted {
    OdDbObjectId entity;
    OdDbFullSubentPathArray paths;
    std::vector<std::vector<Place>> places;  ///< of each path
  };

  void want(const OdDbFullSubentPath& path, Place place) {
    const auto [ofEntity, isNewEntity] =
        m_entityRows.try_emplace(vdmu::getInsertId(path), m_wanted.size());
    if (isNewEntity) m_wanted.push_back({ofEntity->first, {}, {}});
    Wanted& wanted = m_wanted[ofEntity->second];
    const auto [ofPath, isNewPath] = m_pathRows.try_emplace(path, wanted.places.size());
    if (isNewPath) {
      wanted.paths.append(path);
      wanted.places.emplace_back();
    }
    wanted.places[ofPath->second].push_back(place);
  }
  [[nodiscard]] const std::vector<Wanted>& wanted() const { return m_wanted; }

  OdDbFullSubentPathArray paths;  ///< of all entities, with their dependencies
  OdDbObjectIdArray dependencies;

 private:
  std::vector<Wanted> m_wanted;
  std::unordered_map<OdDbObjectId, std::size_t, vdmu::OdDbObjectIdHash> m_entityRows;
  std::unordered_map<OdDbFullSubentPath, std::size_t, VdmPathHash> m_pathRows;
};

namespace {

/// The dependencies of all paths into one entity.
OdDbObjectIdArray dependenciesInto(const OdDbObjectId& entity, const OdDbObjectId& manager,
                                   const OdDbFullSubentPathArray& paths) {
  OdDbObjectIdArray ids;
  const auto object =
      VdmDbObject::getInstance(entity, manager).openAs<VdmDbObject>(OdDb::kForWrite);
  if (!object.isNull()) object->append(paths, ids);
  if (ids.size() != paths.size() || ids.contains(OdDbObjectId::kNull)) {
    throw OdError(OdString("Failed to create dependency"));
  }
  return ids;
}

template <class Pe>
OdSmartPtr<Pe> extensionOfManagers() {
  return Pe::cast(VdmDbConstraintManager::desc()->getX(Pe::desc()));
}

}  // namespace

void VdmConstraintManagerServices::makeDependencies(Batch& batch) {
  for (std::size_t entry = 0; entry < m_pending.size(); ++entry) {
    Pending& pending = m_pending[entry];
    pending.deps.clear();
    for (const VdmExtendedPath& arg : pending.args) {
      const std::size_t argument = pending.deps.size();
      pending.deps.push_back({OdDbObjectId::kNull, arg.isDefaultGeometry, arg.defaultGeometry});
      if (!arg.path.objectIds().isEmpty()) batch.want(arg.path, {entry, argument});
    }
  }
  for (const Batch::Wanted& wanted : batch.wanted()) {
    const OdDbObjectId manager = VdmDbConstraintManager::getInstanceImpl(
        wanted.entity.ownerId(), /*create=*/true, /*link=*/false);
    const OdDbObjectIdArray ids = dependenciesInto(wanted.entity, manager, wanted.paths);
    for (OdUInt32 i = 0; i < ids.size(); ++i) {
      for (const Batch::Place& place : wanted.places[i]) {
        m_pending[place.entry].deps[place.argument].dependency = ids[i];
      }
    }
    batch.paths.append(wanted.paths);
    batch.dependencies.append(ids);
  }
}

void VdmConstraintManagerServices::setDependencies() {
  for (const Pending& pending : m_pending) {
    const auto manager =
        pending.constraint->owner().openAs<VdmDbConstraintManager>(OdDb::kForWrite);
    if (!manager.isNull()) pending.constraint->setDependencies(pending.deps);
  }
}

void VdmConstraintManagerServices::createConstraints() {
  if (m_pending.empty()) return;
  const auto pe = extensionOfManagers<VdmDbConstraintManagerPE>();
  const auto assembly = extensionOfManagers<VdmDbAssemblyPE>();
  OdDbDatabase* database = m_pending.back().constraint->database();
  Batch batch;
  try {
    makeDependencies(batch);
    setDependencies();
    const bool isWanted = !pe.isNull() && pe->attachmentWanted();
    const OdResult result =
        attachIndexesToArgs(assembly, batch.paths, batch.dependencies, isWanted);
    if (result == eInvalidInput) return removeConstraints();
  } catch (...) {
    removeConstraints();
    throw;
  }
  if (!batch.wanted().empty()) database = batch.wanted().back().entity.database();
  if (m_needUpdate) updateDatabase(assembly, database);
}

// ---- Expressions

OdResult VdmConstraintManagerServices::changeExpressions(
    const std::map<OdString, OdString>& expressions) {
  if (m_pending.empty()) return eOk;
  const auto manager =
      m_pending[0].constraint->owner().openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  if (manager.isNull()) return eOk;
  OdResult failure = eOk;
  for (const Pending& pending : m_pending) {
    const auto found = expressions.find(pending.constraint->name());
    if (found == expressions.end()) throw OdError(eInvalidKey, OdString("invalid map<K, T> key"));
    const OdResult result = manager->setConstraintExpression(pending.constraint, found->second);
    if (result != eOk) failure = result;
  }
  return failure;
}

// ---- Removing

void VdmConstraintManagerServices::removeConstraints() {
  std::map<OdDbObjectId, OdArray<VdmConstraintPtr>, vdmu::ObjectIdLess> byManager;
  for (const Pending& pending : m_pending) {
    byManager[pending.constraint->owner()].append(pending.constraint);
  }
  for (const auto& [id, constraints] : byManager) {
    const auto manager = id.openAs<VdmDbConstraintManager>(OdDb::kForWrite);
    if (!manager.isNull()) manager->removeConstraints(constraints);
  }
}
