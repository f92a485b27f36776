// Persistent id managers: their place, list and record.
#include "vdm_db/model/vdm_db_pers_id_manager.h"

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"
#include "vdm_db/properties/vdm_bag_filing.h"

VDM_DEFINE_DB_CLASS(VdmDbPersIdManager, OdDbObject, L"VdmDbPersIdManager", L"VdmDbPersIdManager",
                    L"model data")

// ---- State

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
  appendIds(added);
  openPathsOf(added);
  attach(added);
  return ids;
}

// Resolving a path loads the external drawings on it. A path that does not resolve is no error.
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

// Only its reactors can find a dependency that the manager does not list.
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

VDM_DEFINE_BAG_DWG_FILING(VdmDbPersIdManager, *m_impl)
VDM_DEFINE_BAG_DXF_FILING(VdmDbPersIdManager, *m_impl)

std::size_t VdmDbPersIdManager::approximateSize() const {
  return OdDbObject::approximateSize() + sizeof(*m_impl) + m_impl->dependencies.approximateSize();
}
