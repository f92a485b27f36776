// Constraint managers: finding them, their constraints and data of the solver's module.
#include "vdm_db/constraints/vdm_db_constraint_manager.h"

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint_cleanup.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_names.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_utils/vdmc_assert.h"

VDM_DEFINE_DB_CLASS(VdmDbConstraintManager, OdDbObject, L"VdmDbConstraintManager",
                    L"VDMDBCONSTRAINTMANAGER", L"3D constraints data")

namespace {

constexpr const char* kSource = "vdm_db/vdm_db_constraint_manager";

}  // namespace

VdmDbConstraintManager::VdmDbConstraintManager() {
  m_properties.setProperty(kVdmDesignIntentSettings, defaultDesignIntentString());
}

// Constraints that others hold outlive the drawing, and the ids of it.
VdmDbConstraintManager::~VdmDbConstraintManager() {
  for (const auto& [nodeId, constraint] : m_constraints) constraint->setOwner(OdDbObjectId::kNull);
}

// ---- Finding managers

OdDbObjectId VdmDbConstraintManager::getInstance(const OdDbObjectId& blockId, bool create) {
  return getInstanceImpl(blockId, create, /*link=*/true);
}

OdDbObjectId VdmDbConstraintManager::getInstanceImpl(const OdDbObjectId& blockTableRecordId,
                                                     bool create, bool link) {
  const OdDbObjectId manager =
      vdmu::getObjInExtDict(blockTableRecordId, kVdmDatabaseKey, create ? desc() : nullptr);
  if (manager.isNull() || !create || !link) return manager;
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
  const OdDbObjectId subDictionary = ownerId();
  if (!vdmu::isIdOf<OdDbDictionary>(subDictionary)) return OdDbObjectId::kNull;
  const OdDbObjectId extensionDictionary = subDictionary.ownerId();
  if (!vdmu::isIdOf<OdDbDictionary>(extensionDictionary)) return OdDbObjectId::kNull;
  const OdDbObjectId block = extensionDictionary.ownerId();
  return vdmu::isIdOf<OdDbBlockTableRecord>(block) ? block : OdDbObjectId::kNull;
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
  m_childManagers.takeOut(m_childManagers.lastPositionsOf(gone), beginStep(kChildStep));
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
  if (held == m_constraints.end()) return false;
  if (m_status == kSolvedWithChanges) changeState(kPartlyModified, {}, {});
  const VdmConstraintPtr kept(constraint);
  removeVariable(constraint->userVariable());
  constraint->setOwner(OdDbObjectId::kNull);
  held->second->setOwner(
      OdDbObjectId::kNull);  // another one, when that of another manager is given
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
  for (const VdmConstraintPtr& constraint : constraints) {
    anyRemoved = takeOut(constraint.get()) || anyRemoved;
  }
  if (anyRemoved) cleanUpRegistry();
}

void VdmDbConstraintManager::removeAllConstraints() { removeConstraints(constraints()); }

// ---- Frozen variables

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
  const auto pe = VdmDbConstraintManagerPE::cast(this);
  if (!pe.isNull()) pe->invalidateTCCache(database());
}
