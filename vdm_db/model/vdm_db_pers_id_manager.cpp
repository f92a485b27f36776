// Persistent id managers: their place, list, record, clones and merging. Remapping is in
// vdm_db_pers_id_manager_remap.cpp, what model objects know in vdm_db_pers_id_manager_links.cpp.
#include "vdm_db/model/vdm_db_pers_id_manager.h"

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_id_mappings.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"
#include "vdm_utils/vdmc_assert.h"

VDM_DEFINE_DB_CLASS(VdmDbPersIdManager, OdDbObject, L"VdmDbPersIdManager", L"VdmDbPersIdManager",
                    L"model data")
OD_RX_DEFINE_ABSTRACT(VdmDbPersIdManagerPE, OdRxObject, L"VdmDbPersIdManagerPE")

namespace {

constexpr int kBagVersion = 1;
constexpr const wchar_t* kDependenciesKey = L"deps";

}  // namespace

// ---- State

VdmDbPersIdManagerImpl::VdmDbPersIdManagerImpl() {
  m_properties.setConfig(VdmProperties::kDropErasedIds);
  m_properties.setVersion(kBagVersion);
  m_properties.mapProperty(kDependenciesKey, &dependencies.array(), OdDb::kHardOwnershipRef);
}

OdResult VdmDbPersIdManagerImpl::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = VdmDbPropertiesBase::dwgInFields(filer);
  dependencies.replaced();
  return result;
}

OdResult VdmDbPersIdManagerImpl::dxfInFields(OdDbDxfFiler* filer) {
  const OdResult result = VdmDbPropertiesBase::dxfInFields(filer);
  dependencies.replaced();
  return result;
}

VdmDbPersIdManager::VdmDbPersIdManager() : m_impl(std::make_unique<VdmDbPersIdManagerImpl>()) {}
VdmDbPersIdManager::~VdmDbPersIdManager() = default;

VdmDbPersIdManagerImpl& VdmDbPersIdManager::implForRead() const {
  assertReadEnabled();
  return *m_impl;
}

// ---- Place

OdDbObjectId VdmDbPersIdManager::getInstance(OdDbObjectId block, bool create) {
  return vdmu::getObjInExtDict(block, kVdmPersIdManager, create ? desc() : nullptr);
}

OdDbObjectId VdmDbPersIdManager::blockId() const { return vdmu::getOwningBlock(objectId()); }

OdDbObjectIdArray vdmu::getAllPersIdManagers(OdDbDatabase* database) {
  OdDbObjectIdArray managers;
  if (database == nullptr) return managers;
  const OdDbBlockTablePtr blocks = database->getBlockTableId().safeOpenAs<OdDbBlockTable>();
  for (const OdDbSymbolTableIteratorPtr it = blocks->newIterator(); !it->done(); it->step()) {
    const OdDbObjectId manager = VdmDbPersIdManager::getInstance(it->getRecordId(), false);
    if (!manager.isNull()) managers.append(manager);
  }
  return managers;
}

// ---- List

OdDbObjectIdArray VdmDbPersIdManager::objectDependencyIds() const {
  return implForRead().dependencies.ids();
}

void VdmDbPersIdManager::appendIds(const OdDbObjectIdArray& ids) {
  assertWriteEnabled(/*autoUndo=*/false);
  const OdDbObjectIdArray fresh = m_impl->dependencies.notListed(ids);
  if (!fresh.isEmpty()) m_impl->dependencies.append(fresh, beginPartialUndo(desc()));
}

void VdmDbPersIdManager::takeOut(const OdArray<OdUInt32>& positions) {
  if (positions.isEmpty()) return;
  assertWriteEnabled(/*autoUndo=*/false);
  m_impl->dependencies.takeOut(positions, beginPartialUndo(desc()));
}

void VdmDbPersIdManager::onAppendToOwner(VdmDbObjectDependency* dependency) {
  appendIds(OdDbObjectIdArray{dependency->objectId()});
}

// ---- Making

OdDbObjectIdArray VdmDbPersIdManager::append(const OdDbFullSubentPathArray& paths,
                                             OdDbUserIO* userIO) {
  assertWriteEnabled(/*autoUndo=*/false);
  OdDbObjectIdArray ids;
  if (paths.isEmpty()) return ids;
  const VdmDbPersIdManagerPEPtr host = VdmDbPersIdManagerPE::cast(this);
  if (host.isNull()) return ids;
  ensureModelObjects(paths);
  host->prepareAppend(this, paths, database());
  host->findExisting(this, paths, ids);
  OdDbObjectIdArray added;
  host->createDependencies(added, this, paths, userIO, ids);
  VDM_ASSERT_AT(ids.size() == paths.size(), "vdm_db/vdm_db_pers_id_manager", 0);
  appendIds(added);
  openPathsOf(added);
  attach(added);
  return ids;
}

// External drawings on the way are opened; a path that leads nowhere yet is none of our concern.
void VdmDbPersIdManager::openPathsOf(const OdDbObjectIdArray& dependencies) {
  OdDbFullSubentPath path;
  for (const OdDbObjectId& id : dependencies) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull()) {
      throw OdError(eNotOpenForRead, L"dependency " + id.getHandle().ascii());
    }
    dependency->getLinkObject(path, /*openErased=*/false);
  }
}

// ---- Removing

OdDbObjectIdArray VdmDbPersIdManager::getUnusedDependencies() const {
  OdDbObjectIdArray unused;
  for (const OdDbObjectId& id : implForRead().dependencies.ids()) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (!dependency.isNull() && !dependency->isWatched()) unused.append(id);
  }
  return unused;
}

void VdmDbPersIdManager::removeDependencies(const OdDbObjectIdArray& ids) {
  takeOut(implForRead().dependencies.positionsOf(ids));
  detach(ids);
  eraseUnwatched(ids);
}

// Nobody finds a dependency of the manager that is not listed but whoever watches it.
void VdmDbPersIdManager::eraseUnwatched(const OdDbObjectIdArray& ids) const {
  for (const OdDbObjectId& id : ids) {
    if (id.ownerId() != objectId()) continue;
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull() || dependency->isWatched()) continue;
    const VdmOpenUpgrade upgrade(dependency);
    dependency->erase();
  }
}

// ---- Partial undo: the edit of the list, see VdmIndexedIds

void VdmDbPersIdManager::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  m_impl->dependencies.applyUndo(filer, beginPartialUndo(desc()));
}

// ---- Record: the base's part, then the bag

OdResult VdmDbPersIdManager::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dwgInFields(filer);
  return result == eOk ? m_impl->dwgInFields(filer) : result;
}

void VdmDbPersIdManager::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl->dwgOutFields(filer);
}

OdResult VdmDbPersIdManager::dxfInFields(OdDbDxfFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dxfInFields(filer);
  return result == eOk ? m_impl->dxfInFields(filer) : result;
}

void VdmDbPersIdManager::dxfOutFields(OdDbDxfFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dxfOutFields(filer);
  m_impl->dxfOutFields(filer);
}

std::size_t VdmDbPersIdManager::approximateSize() const {
  return OdDbObject::approximateSize() + sizeof(*m_impl) + m_impl->dependencies.approximateSize();
}

// ---- Cloning

OdDbObjectPtr VdmDbPersIdManager::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                               bool isPrimary) const {
  const OdDbObjectPtr clone = OdDbObject::subDeepClone(mapping, owner, isPrimary);
  adoptClones(clone, mapping);
  return clone;
}

OdDbObjectPtr VdmDbPersIdManager::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                                 bool isPrimary) const {
  const OdDbObjectPtr clone = OdDbObject::subWblockClone(mapping, owner, isPrimary);
  adoptClones(clone, mapping);
  return clone;
}

// The clone lists the sources as yet. Those that have clones give way to them, each clone telling
// that it has come; the others wait for the translation of ids.
void VdmDbPersIdManager::adoptClones(OdDbObject* clone, OdDbIdMapping& mapping) const {
  const VdmDbPersIdManagerPtr target = VdmDbPersIdManager::cast(clone);
  if (target.isNull()) return;
  const VdmOpenUpgrade upgrade(target);
  const OdDbObjectIdArray sources = implForRead().dependencies.ids();
  target->takeOut(target->m_impl->dependencies.positionsOf(sources));
  for (const OdDbObjectId& source : sources) {
    OdDbIdPair pair(source);
    if (!mapping.compute(pair) || !pair.isCloned()) {
      target->appendIds(OdDbObjectIdArray{source});
      continue;
    }
    const OdDbObjectPtr dependency = pair.value().openObject();
    if (!dependency.isNull()) dependency->appendToOwner(pair, target, mapping);
  }
}

// ---- Merging

void VdmDbPersIdManager::mergeManagers(VdmDbPersIdManager* source, OdDbIdMapping&,
                                       VdmDbReverseIdMapping& reverse,
                                       std::unordered_set<OdDbObjectId>& mergedObjects,
                                       bool keepAll,
                                       std::map<OdDbObjectId, OdDbObjectId>& replaced) {
  if (source == nullptr)
    throw OdError(eNullPointer, L"mergeManagers : Persistent id manager is NULL");
  if (source == this) return;
  assertWriteEnabled(/*autoUndo=*/false);
  source->assertWriteEnabled(/*autoUndo=*/false);
  const OdDbObjectIdArray ids = source->m_impl->dependencies.ids();
  const OdDbObjectId block = blockId();
  OdDbObjectIdArray moved;
  for (const OdDbObjectId& id : ids) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
    if (dependency.isNull()) continue;
    const OdDbObjectId top = dependency->getInsertId();
    const bool isWanted =
        keepAll || top.ownerId() == block || reverse.isCloned(top) || dependency->isWatched();
    if (!isWanted) continue;
    dependency->setOwnerId(objectId());
    moved.append(id);
    if (const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(top); !object.isNull()) {
      mergedObjects.insert(object->objectId());
    }
  }
  source->removeDependencies(ids);
  appendIds(moved);
  attach(moved);
  replaced[source->objectId()] = objectId();
  source->erase();
}
