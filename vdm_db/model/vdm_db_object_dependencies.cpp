// The dependencies that model objects list.
#include "vdm_db/model/vdm_db_object.h"

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "vdm_db/drawing_utils/vdm_erase_utils.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_object_impl.h"
#include "vdm_db/references/vdm_path_utils.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

bool isOwnedBy(OdDbObjectId dependency, OdDbObjectId manager) {
  return vdmAssert(
      manager.isNull() || dependency.ownerId() == manager, "dependency.ownerId() == manager",
      L"dependency " + dependency.getHandle().ascii() + L" of " +
          dependency.ownerId().getHandle().ascii() + L", manager " + manager.getHandle().ascii(),
      "vdm_db/vdm_db_object", 0);
}

bool standsAt(OdDbObjectId id, const OdDbFullSubentPath& path) {
  const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
  OdDbFullSubentPath present;
  return !dependency.isNull() &&
         dependency->getLinkObject(present, /*openErased=*/true) == vdmu::ePathOk &&
         present == path;
}

}  // namespace

bool VdmDbObject::hasDependencies() const {
  return !implForRead().constraintDependencies.isEmpty() || !m_impl->persIdDependencies.isEmpty();
}

const OdDbObjectIdArray& VdmDbObject::constraintDependencies() const {
  return implForRead().constraintDependencies.ids();
}

const OdDbObjectIdArray& VdmDbObject::persIdDependencies() const {
  return implForRead().persIdDependencies.ids();
}

OdDbObjectIdArray VdmDbObject::dependencies() const {
  OdDbObjectIdArray all = constraintDependencies();
  all.append(m_impl->persIdDependencies.ids());
  return all;
}

// ---- By path

OdDbObjectId VdmDbObject::getConstraintDependency(const OdDbFullSubentPath& path) const {
  return implForRead().constraintPaths.find(path, m_impl->constraintDependencies.ids());
}

OdDbObjectId VdmDbObject::getPersIdDependency(const OdDbFullSubentPath& path) const {
  OdDbObjectId& last = implForRead().lastDependency;
  if (last.isNull() || !standsAt(last, path)) {
    last = m_impl->persIdPaths.find(path, m_impl->persIdDependencies.ids());
  }
  return last;
}

void VdmDbObject::invalidatePersIdDepsCache() {
  implForRead().persIdPaths.invalidate();
  m_impl->lastDependency.setNull();
}

// ---- Constraint dependencies

OdDbObjectId VdmDbObject::append(const OdDbFullSubentPath& path) {
  OdDbObjectIdArray ids;
  append(OdDbFullSubentPathArray{path}, ids);
  return ids[0];
}

void VdmDbObject::append(const OdDbFullSubentPathArray& paths, OdDbObjectIdArray& ids) {
  assertWriteEnabled(/*autoUndo=*/false);
  if (database() == nullptr) throw OdError(eObjectNotInDatabase, isA()->name());
  OdDbObjectIdArray found(paths.size());
  for (const OdDbFullSubentPath& path : paths) {
    OdDbObjectId id;
    if (!vdmu::isNullObjectLink(path) && vdmu::getInsertId(path) == m_impl->attachedEntity) {
      id = getConstraintDependency(path);
      if (id.isNull()) id = makeConstraintDependency(path);
    }
    found.append(id);
  }
  ids = found;
}

OdDbObjectId VdmDbObject::makeConstraintDependency(const OdDbFullSubentPath& path) {
  const VdmDbObjectDependencyPtr dependency = VdmDbObjectDependency::createObject();
  dependency->setLinkObject(path);
  const OdDbObjectIdArray added{database()->addOdDbObject(dependency, objectId())};
  m_impl->constraintDependencies.append(added, recordStep(kUndoConstraintList));
  m_impl->constraintPaths.added(added);
  return added[0];
}

void VdmDbObject::removeConstraintDependencies(const OdDbObjectIdArray& ids) {
  const OdArray<OdUInt32> positions = implForRead().constraintDependencies.positionsOf(ids);
  if (positions.isEmpty()) return;
  assertWriteEnabled(/*autoUndo=*/false);
  const OdDbObjectIdArray before = m_impl->constraintDependencies.ids();
  m_impl->constraintDependencies.takeOut(positions, recordStep(kUndoConstraintList));
  m_impl->constraintPaths.invalidate();
  for (const OdUInt32 position : positions) {
    vdmu::eraseObject(before[position]);
  }
}

// ---- Persistent-id dependencies

bool VdmDbObject::addPersIdDependency(OdDbObjectId dependency, OdDbObjectId manager) {
  if (!isOwnedBy(dependency, manager)) return false;
  return addPersIdDependencies(OdDbObjectIdArray{dependency}) != 0;
}

bool VdmDbObject::removePersIdDependency(OdDbObjectId dependency, OdDbObjectId manager) {
  if (!isOwnedBy(dependency, manager)) return false;
  return removePersIdDependencies(OdDbObjectIdArray{dependency}) != 0;
}

OdUInt32 VdmDbObject::addPersIdDependencies(const OdDbObjectIdArray& dependencies) {
  const OdDbObjectIdArray added = implForRead().persIdDependencies.notListed(dependencies);
  if (added.isEmpty()) return 0;
  assertWriteEnabled(/*autoUndo=*/false);
  m_impl->persIdDependencies.append(added, recordStep(kUndoPersIdList));
  m_impl->persIdPaths.added(added);
  return added.size();
}

OdUInt32 VdmDbObject::removePersIdDependencies(const OdDbObjectIdArray& dependencies) {
  return takeOutPersIds(implForRead().persIdDependencies.positionsOf(dependencies));
}

void VdmDbObject::removePersIdDependencies() {
  takeOutPersIds(
      implForRead().persIdDependencies.positionsWhere([](OdDbObjectId) { return true; }));
}

bool VdmDbObject::removeStalePersIdDependencies() {
  const auto isStale = [this](OdDbObjectId id) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    return dependency.isNull() || dependency->getInsertId() != m_impl->attachedEntity;
  };
  return takeOutPersIds(implForRead().persIdDependencies.positionsWhere(isStale)) != 0;
}

OdUInt32 VdmDbObject::takeOutPersIds(const OdArray<OdUInt32>& positions) {
  if (positions.isEmpty()) return 0;
  assertWriteEnabled(/*autoUndo=*/false);
  m_impl->persIdDependencies.takeOut(positions, recordStep(kUndoPersIdList));
  invalidatePersIdDepsCache();
  return positions.size();
}
