// References of features to geometry.
#include "vdm_db/features/vdm_db_pers_id_reactor.h"

#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

VDM_DEFINE_DB_CLASS(VdmDbPersIdReactor, VdmDbFeatureReactor, L"VdmDbPersIdReactor",
                    L"VDMDBPERSIDREACTOR", L"features reactor")

namespace {

constexpr int kBagVersion = 1;

void detach(OdDbObjectId dependency, OdDbObjectId reactor) {
  const OdDbObjectPtr object = dependency.openObject(OdDb::kForWrite);
  if (!object.isNull()) object->removePersistentReactor(reactor);
}

void attach(OdDbObjectId dependency, OdDbObjectId reactor) {
  const OdDbObjectPtr object = dependency.openObject(OdDb::kForWrite);
  if (!object.isNull()) object->addPersistentReactor(reactor);
}

}  // namespace

// ---- State

VdmDbPersIdReactorImpl::VdmDbPersIdReactorImpl() {
  m_properties.setVersion(kBagVersion);
  m_properties.mapProperty<OdLong>(kVdmMask, &mask);
  m_properties.mapProperty<OdLong>(kVdmTag, &tag);
  m_properties.mapProperty(kVdmPersIds, &persIds.array(), OdDb::kSoftPointerRef);
}

OdResult VdmDbPersIdReactorImpl::subErase(VdmDbFeatureReactor* reactor) {
  if (reactor->isUndoing()) return eOk;
  for (const OdDbObjectId& id : persIds.ids()) detach(id, reactor->objectId());
  return eOk;
}

// ---- Mask and tag

void VdmDbPersIdReactor::setMask(int mask) { stateForWrite().mask = mask; }

bool VdmDbPersIdReactor::hasMask(int mask) const {
  return mask == -1 || (stateForRead().mask & mask) != 0;
}

unsigned int VdmDbPersIdReactor::mask() const {
  return static_cast<unsigned int>(stateForRead().mask);
}

void VdmDbPersIdReactor::setTag(int tag) { stateForWrite().tag = tag; }
bool VdmDbPersIdReactor::hasTag(int tag) const { return stateForRead().tag == tag; }
int VdmDbPersIdReactor::tag() const { return stateForRead().tag; }

// ---- Dependencies

OdDbObjectIdArray VdmDbPersIdReactor::persIds() const { return stateForRead().persIds.ids(); }

const OdDbObjectIdArray& VdmDbPersIdReactor::persIdsRef() const {
  return stateForRead().persIds.ids();
}

void VdmDbPersIdReactor::addPersIds(const OdDbObjectIdArray& ids) {
  VdmIndexedIds& held = stateForWrite().persIds;
  const OdDbObjectIdArray added = held.notListed(ids);
  held.append(added, nullptr);
  for (const OdDbObjectId& id : added) attach(id, objectId());
}

void VdmDbPersIdReactor::removePersIds() { removePersIds(persIds()); }

void VdmDbPersIdReactor::removePersIds(const OdDbObjectIdArray& ids) {
  VdmIndexedIds& held = stateForWrite().persIds;
  const OdArray<OdUInt32> positions = held.positionsOf(ids);
  const OdDbObjectIdArray before = held.ids();
  held.takeOut(positions, nullptr);
  for (const OdUInt32 position : positions) detach(before[position], objectId());
}

// ---- Events

void VdmDbPersIdReactor::erased(const OdDbObject* object, bool erasing) {
  if (!erasing || object->isUndoing()) return;
  const VdmOpenUpgrade upgrade(this);
  VdmIndexedIds& held = stateForWrite().persIds;
  held.takeOut(held.positionsOf(OdDbObjectIdArray{object->objectId()}), nullptr);
  if (object->hasPersistentReactor(objectId())) {
    // The dependency is open for read, and events pass it as a constant.
    const VdmOpenUpgrade dependencyUpgrade(object);
    const_cast<OdDbObject*>(object)->removePersistentReactor(objectId());
  }
  if (stateForRead().persIds.isEmpty()) loseLast();
}

// The feature may be erased with this, or take the reactor away.
void VdmDbPersIdReactor::loseLast() {
  {
    const VdmFeaturePtr feature = ownerId().openAs<VdmFeature>(OdDb::kForWrite);
    if (!feature.isNull()) feature->eraseReactor(objectId(), static_cast<int>(mask()), 0);
  }
  if (!isErased()) erase();
}

bool VdmDbPersIdReactor::doAudit() {
  const auto isLost = [](const OdDbObjectId& id) {
    return id.openAs<VdmDbObjectDependency>().isNull();
  };
  const VdmIndexedIds& held = stateForRead().persIds;
  if (const OdArray<OdUInt32> lost = held.positionsWhere(isLost); !lost.isEmpty()) {
    const VdmOpenUpgrade upgrade(this);
    stateForWrite().persIds.takeOut(lost, nullptr);
  }
  for (const OdDbObjectId& id : held.ids()) {
    const OdDbObjectPtr dependency = id.openObject();
    if (!dependency.isNull() && !dependency->hasPersistentReactor(objectId())) {
      attach(id, objectId());
    }
  }
  return !held.isEmpty();
}
