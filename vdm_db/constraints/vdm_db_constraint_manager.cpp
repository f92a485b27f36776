// Constraint managers: finding them, their constraints, status and data of the solver's module.
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

#include <algorithm>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint_utils.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_names.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_object_names.h"
#include "vdm_utils/vdmc_assert.h"

VDM_DEFINE_DB_CLASS(VdmDbConstraintManager, OdDbObject, L"VdmDbConstraintManager",
                    L"VDMDBCONSTRAINTMANAGER", L"3D constraints data")

namespace {

constexpr const char* kSource = "vdm_db/vdm_db_constraint_manager";

bool keepsModifiedObjects(VdmDbConstraintManager::ConstraintManagerStatus status) {
  return status == VdmDbConstraintManager::kSolvedWithChanges ||
         status == VdmDbConstraintManager::kPartlyModified;
}

/// Equal to the last part; the order of paths takes default geometry by its number alone.
bool isSamePath(const VdmExtendedPath& a, const VdmExtendedPath& b) {
  return a.isDefaultGeometry == b.isDefaultGeometry &&
         (!a.isDefaultGeometry || a.defaultGeometry == b.defaultGeometry) && a.path == b.path;
}

bool holdsPath(const VdmExtendedPathArray& paths, const VdmExtendedPath& path) {
  return std::any_of(paths.begin(), paths.end(),
                     [&path](const VdmExtendedPath& held) { return isSamePath(held, path); });
}

}  // namespace

VdmDbConstraintManager::VdmDbConstraintManager() {
  m_properties.setProperty(kVdmDesignIntentSettings, defaultDesignIntentString());
}
VdmDbConstraintManager::~VdmDbConstraintManager() = default;

// ---- Finding managers

OdDbObjectId VdmDbConstraintManager::getInstance(const OdDbObjectId& blockId, bool create) {
  return getInstanceImpl(blockId, create, /*link=*/true);
}

OdDbObjectId VdmDbConstraintManager::getInstanceImpl(const OdDbObjectId& blockTableRecordId,
                                                     bool create, bool link) {
  const OdDbObjectId manager =
      vdmu::getObjInExtDict(blockTableRecordId, kVdmDatabaseKey, create ? desc() : nullptr);
  if (manager.isNull() || !link || !create) return manager;
  VDM_ASSERT_AT(blockTableRecordId != blockTableRecordId.database()->getPaperSpaceId(), kSource,
                __LINE__);
  linkUnderRoot(manager);
  return manager;
}

void VdmDbConstraintManager::linkUnderRoot(const OdDbObjectId& manager) {
  const OdDbObjectId root = getRootCM(manager.database(), /*create=*/true);
  root.safeOpenAs<VdmDbConstraintManager>(OdDb::kForWrite)->addChildConstraintManager(manager);
}

OdDbObjectId VdmDbConstraintManager::getRootCM(OdDbDatabase* database, bool create) {
  return vdmu::getRootObjectByName(database, kVdmDatabaseKey, create ? desc() : nullptr);
}

void VdmDbConstraintManager::notifyRootCM(OdDbDatabase* database) {
  const OdDbObjectId root = getRootCM(database, /*create=*/true);
  if (root.isNull()) return;
  root.safeOpenAs<VdmDbConstraintManager>(OdDb::kForWrite)->setStatus(kFullyModified);
}

OdDbObjectId VdmDbConstraintManager::blockId() const {
  assertReadEnabled();
  const auto isOf = [](const OdDbObjectId& id, const OdRxClass* cls) {
    const OdRxClass* idClass = id.objectClass();
    return idClass != nullptr && idClass->isDerivedFrom(cls);
  };
  const OdDbObjectId subDictionary = ownerId();
  if (!isOf(subDictionary, OdDbDictionary::desc())) return OdDbObjectId::kNull;
  const OdDbObjectId extensionDictionary = subDictionary.ownerId();
  if (!isOf(extensionDictionary, OdDbDictionary::desc())) return OdDbObjectId::kNull;
  const OdDbObjectId block = extensionDictionary.ownerId();
  return isOf(block, OdDbBlockTableRecord::desc()) ? block : OdDbObjectId::kNull;
}

// ---- Child managers

void VdmDbConstraintManager::addChildConstraintManager(const OdDbObjectId& manager) {
  if (!manager.isNull() && !m_childManagers.contains(manager)) appendChild(manager);
}

void VdmDbConstraintManager::appendChild(const OdDbObjectId& manager) {
  OdDbObjectIdArray fresh;
  fresh.append(manager);
  m_childManagers.append(fresh, beginStep(kChildStep));
}

void VdmDbConstraintManager::removeChild(const OdDbObjectId& manager) {
  OdDbObjectIdArray gone;
  gone.append(manager);
  m_childManagers.takeOut(m_childManagers.positionsOf(gone), beginStep(kChildStep));
}

OdDbObjectIdArray VdmDbConstraintManager::getAllConstraintManagers() const {
  assertReadEnabled();
  return m_childManagers.ids();
}

// ---- Constraints

OdArray<VdmConstraintPtr> VdmDbConstraintManager::constraints() const {
  OdArray<VdmConstraintPtr> all;
  all.reserve(constraintsCount());
  for (const auto& [nodeId, constraint] : m_constraints) all.append(constraint);
  return all;
}

VdmConstraintPtr VdmDbConstraintManager::getConstraintByNodeId(OdULong nodeId) const {
  const auto found = m_constraints.find(nodeId);
  return found == m_constraints.end() ? VdmConstraintPtr() : found->second;
}

void VdmDbConstraintManager::addConstraint(VdmConstraintPtr& constraint) {
  if (constraint.isNull()) return;
  assertWriteEnabled();
  const OdULong nodeId = m_constraints.empty() ? 1 : m_constraints.rbegin()->first + 1;
  if (nodeId == 0) throw OdError(eLimitExceeded, OdString("node ids of constraints"));
  constraint->setNodeId(nodeId);
  m_constraints.emplace(nodeId, constraint);
}

bool VdmDbConstraintManager::takeOut(VdmConstraint* constraint) {
  assertWriteEnabled();
  if (constraint == nullptr) return false;
  const auto held = m_constraints.find(constraint->nodeId());
  if (held == m_constraints.end() || held->second.get() != constraint) return false;
  if (m_status == kSolvedWithChanges) changeState(kPartlyModified, {}, {});
  constraint->setOwner(OdDbObjectId::kNull);
  m_constraints.erase(held);
  return true;
}

void VdmDbConstraintManager::cleanUpRegistry() {
  vdmu::cleanupVdmDbObjects(this, m_vdmDbObjects.ids());
}

void VdmDbConstraintManager::removeConstraint(VdmConstraint* constraint) {
  const VdmConstraintPtr kept(constraint);
  if (takeOut(constraint)) cleanUpRegistry();
}

void VdmDbConstraintManager::removeConstraints(const OdArray<VdmConstraintPtr>& constraints) {
  bool anyRemoved = false;
  for (const VdmConstraintPtr& constraint : constraints)
    anyRemoved = takeOut(constraint.get()) || anyRemoved;
  if (anyRemoved) cleanUpRegistry();
}

void VdmDbConstraintManager::removeAllConstraints() { removeConstraints(constraints()); }

void VdmDbConstraintManager::setConstraintName(VdmConstraint* constraint, const OdString& name) {
  assertWriteEnabled();
  if (constraint != nullptr) constraint->setName(name);
}

// ---- Arguments

ExtendedDep VdmDbConstraintManager::dependencyOf(const VdmExtendedPath& path) {
  ExtendedDep dependency;
  dependency.isDefaultGeometry = path.isDefaultGeometry;
  dependency.defaultGeometry = path.defaultGeometry;
  const OdDbObjectId entity = vdmu::getInsertId(path.path);
  if (!entity.isNull()) {
    const auto object =
        VdmDbObject::getInstance(entity, objectId()).openAs<VdmDbObject>(OdDb::kForWrite);
    if (!object.isNull()) dependency.dependency = object->append(path.path);
  }
  if (dependency.dependency.isNull() && !dependency.isDefaultGeometry)
    throw OdError(OdString("Failed to create dependency"));
  return dependency;
}

void VdmDbConstraintManager::addArguments(VdmConstraint* constraint,
                                          const VdmExtendedPathArray& paths,
                                          VdmExtendedPathArray& added) {
  assertWriteEnabled(/*autoUndo=*/false);
  invalidateTCCache();
  if (constraint == nullptr) return;
  std::vector<ExtendedDep> dependencies = constraint->dependencies();
  VdmExtendedPathArray held = constraint->getExtArguments();
  VdmExtendedPathArray fresh;
  for (const VdmExtendedPath& path : paths) {
    if (holdsPath(held, path)) continue;
    dependencies.push_back(dependencyOf(path));
    held.append(path);
    fresh.append(path);
  }
  constraint->setDependencies(dependencies);
  added.append(fresh);
}

void VdmDbConstraintManager::removeArguments(VdmConstraint* constraint,
                                             const VdmExtendedPathArray& paths) {
  assertWriteEnabled(/*autoUndo=*/false);
  invalidateTCCache();
  if (constraint == nullptr) return;
  const std::vector<ExtendedDep> dependencies = constraint->dependencies();
  std::vector<ExtendedDep> kept;
  VdmExtendedPath path;
  for (OdUInt32 i = 0; i < dependencies.size(); ++i) {
    const bool goes = constraint->getExtArgument(i, path) && holdsPath(paths, path);
    if (!goes) kept.push_back(dependencies[i]);
  }
  constraint->setDependencies(kept);
}

void VdmDbConstraintManager::replaceConstraintDependencies(
    const VdmDbObject* object, const std::map<OdDbObjectId, OdDbObjectId>& replacements,
    const std::map<OdDbObjectId, OdDbObjectId>& chained) {
  const OdDbObjectIdArray ofObject = object->dependencies();
  const std::set<OdDbObjectId> replaceable(ofObject.begin(), ofObject.end());
  for (const auto& [nodeId, constraint] : m_constraints) {
    if (constraint.isNull()) continue;
    std::vector<ExtendedDep> dependencies = constraint->dependencies();
    bool anyReplaced = false;
    for (ExtendedDep& dependency : dependencies) {
      if (dependency.dependency.isNull() || !replaceable.contains(dependency.dependency)) continue;
      const auto replacement = replacements.find(dependency.dependency);
      if (replacement == replacements.end()) continue;
      const auto final = chained.find(replacement->second);
      dependency.dependency = final == chained.end() ? replacement->second : final->second;
      anyReplaced = true;
    }
    if (anyReplaced) constraint->setDependencies(dependencies);
  }
}

// ---- Status

void VdmDbConstraintManager::setStatus(ConstraintManagerStatus status) {
  if (status == m_status) return;
  changeState(status, {}, keepsModifiedObjects(status) ? ModifiedObjects() : m_modifiedObjects);
}

VdmDbConstraintManager::ConstraintManagerStatus VdmDbConstraintManager::getStatus() const {
  assertReadEnabled();
  return m_status;
}

void VdmDbConstraintManager::notifyConstraintModify(VdmConstraint* constraint,
                                                    VdmConstraint::NotifyCode code) {
  if (code == VdmConstraint::kBeforeModify) assertWriteEnabled();
  if (code != VdmConstraint::kDataChanged) return;
  assertReadEnabled();
  if (m_status < kNotEvaluated) {
    markArgumentsModified(*constraint);
  } else {
    setStatus(kFullyModified);
  }
}

// An argument that refers to nothing adds a null id, one that cannot be resolved adds none.
void VdmDbConstraintManager::markArgumentsModified(const VdmConstraint& constraint) {
  ModifiedObjects added;
  for (const OdDbObjectId& argument : constraint.argumentIds()) {
    OdDbFullSubentPath path;
    if (!argument.isNull()) {
      const auto dependency = argument.openAs<VdmDbObjectDependency>();
      if (dependency.isNull() || dependency->getLinkObject(path, false) == vdmu::ePathInvalid)
        continue;
    }
    const OdDbObjectId object = vdmu::getInsertId(path);
    if (!m_modifiedObjects.contains(object)) added.insert(object);
  }
  if (!added.empty() || m_status < kPartlyModified)
    changeState(std::max(m_status, kPartlyModified), added, {});
}

void VdmDbConstraintManager::notifyAboutModifications(const OdDbObjectId& object, bool modified) {
  invalidateTCCache();
  if (m_status >= kNotEvaluated) {
    if (m_status == kFullyModified) return;
    const VdmOpenUpgrade upgrade(this);
    setStatus(kFullyModified);
  } else if (modified) {
    markModified(object);
  } else {
    markFinished(object);
  }
}

void VdmDbConstraintManager::markModified(const OdDbObjectId& object) {
  ModifiedObjects added;
  if (!m_modifiedObjects.contains(object)) added.insert(object);
  if (added.empty() && m_status == kPartlyModified) return;
  const VdmOpenUpgrade upgrade(this);
  changeState(kPartlyModified, added, {});
}

void VdmDbConstraintManager::markFinished(const OdDbObjectId& object) {
  ModifiedObjects removed;
  if (m_modifiedObjects.contains(object)) removed.insert(object);
  ConstraintManagerStatus status = m_status;
  if (status == kSolvedWithChanges) status = kPartlyModified;
  if (status == kPartlyModified && m_modifiedObjects.size() == removed.size()) status = kUpToDate;
  if (removed.empty() && status == m_status) return;
  const VdmOpenUpgrade upgrade(this);
  changeState(status, {}, removed);
}

OdDbObjectIdArray VdmDbConstraintManager::getModifiedObjects() const {
  assertReadEnabled();
  OdDbObjectIdArray objects;
  for (const OdDbObjectId& object : m_modifiedObjects) objects.append(object);
  return objects;
}

void VdmDbConstraintManager::setModifiedObjects(const OdDbObjectIdArray& objects) {
  ModifiedObjects next;
  for (const OdDbObjectId& object : objects) next.insert(object);
  if (m_status == kNotEvaluated) {
    m_modifiedObjects = std::move(next);
    return;
  }
  ModifiedObjects added;
  ModifiedObjects removed;
  const vdmu::ObjectIdLess less;
  std::set_difference(next.begin(), next.end(), m_modifiedObjects.begin(), m_modifiedObjects.end(),
                      std::inserter(added, added.end()), less);
  std::set_difference(m_modifiedObjects.begin(), m_modifiedObjects.end(), next.begin(), next.end(),
                      std::inserter(removed, removed.end()), less);
  const VdmOpenUpgrade upgrade(this);
  changeState(m_status, added, removed);
}

// ---- Variables

void VdmDbConstraintManager::unfreezeVariables() {
  std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash> seen;
  OdDbObjectIdArray waiting;
  m_frozenVariables.clear();
  waiting.append(m_childManagers.ids());
  while (!waiting.isEmpty()) {
    const OdDbObjectId id = waiting.last();
    waiting.removeLast();
    if (!seen.insert(id).second) continue;
    const auto child = id.openAs<VdmDbConstraintManager>(OdDb::kForRead);
    if (child.isNull()) continue;
    child->m_frozenVariables.clear();
    waiting.append(child->m_childManagers.ids());
  }
}

// ---- Data of the solver's module

OdString VdmDbConstraintManager::defaultDesignIntentString() { return OdString(L"null"); }

OdString VdmDbConstraintManager::getDesignIntentOptions() const {
  OdString options;
  m_properties.getProperty(kVdmDesignIntentSettings, options);
  return options;
}

void VdmDbConstraintManager::setDesignIntentOptions(const OdString& options) {
  assertWriteEnabled();
  m_properties.removeProperty(kVdmDesignIntentSettings);
  if (!options.isEmpty()) m_properties.setProperty(kVdmDesignIntentSettings, options);
}

void VdmDbConstraintManager::invalidateTCCache() {
  m_tcCache.clear();
  const auto pe = VdmDbConstraintManagerPE::cast(static_cast<const OdRxObject*>(this));
  if (!pe.isNull()) pe->invalidateTCCache(database());
}
