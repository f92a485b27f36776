// Persistent references to geometry.
#include "vdm_db/model/vdm_db_object_dependency.h"

#include <atomic>

#include "platform/cloning/id_mapping.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/model/vdm_reference_notes.h"
#include "vdm_db/references/vdm_path_utils.h"

VDM_DEFINE_DB_CLASS(VdmDbObjectDependency, OdDbObject, L"VdmDbObjectDependency",
                    L"VDMDBOBJECTDEPENDENCY", L"3D constraints data")

namespace {

std::atomic<OdUInt64> g_linkGeneration{0};

bool isElementFor(const VdmCompoundObjectId::Element& element, const OdDbObjectId& id,
                  const OdDbDatabase* database) {
  if (element.flag != 0) return false;
  if (id.originalDatabase() == database) {
    return element.kind == VdmCompoundObjectId::kId && element.id == id;
  }
  return element.kind == VdmCompoundObjectId::kHandle && element.handle == id.getHandle();
}

}  // namespace

VdmDbObjectDependency::VdmDbObjectDependency() { mapMembers(); }
VdmDbObjectDependency::~VdmDbObjectDependency() = default;

void VdmDbObjectDependency::mapMembers() {
  m_properties.mapProperty<OdLong>(kVdmEntityTag, &m_entityTag);
  m_properties.mapProperty<OdLong>(kVdmBodyTopHash, &m_bodyHash);
}

OdUInt64 VdmDbObjectDependency::linkGeneration() {
  return g_linkGeneration.load(std::memory_order_relaxed);
}

// ---- Link

vdmu::EVdmPathRes VdmDbObjectDependency::getLinkObject(OdDbFullSubentPath& path,
                                                       bool openErased) const {
  assertReadEnabled();
  path.subentId() = m_subent;
  return m_compoundId.getFullPathEx(path.objectIds(), openErased);
}

OdDbFullSubentPath VdmDbObjectDependency::getLinkObject(bool openErased) const {
  OdDbFullSubentPath path;
  getLinkObject(path, openErased);
  return path;
}

bool VdmDbObjectDependency::standsAt(const OdDbFullSubentPath& path) const {
  const OdDbObjectIdArray& ids = path.objectIds();
  if (m_subent != path.subentId() || m_compoundId.size() != ids.size()) return false;
  if (ids.isEmpty()) return true;
  const OdDbDatabase* database = ids.first().originalDatabase();
  const OdArray<VdmCompoundObjectId::Element>& elements = m_compoundId.elements();
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    if (!isElementFor(elements[i], ids[i], database)) return false;
  }
  return true;
}

void VdmDbObjectDependency::setLinkObject(const OdDbFullSubentPath& path) {
  if (isWriteEnabled() && standsAt(path)) return;
  linkWillChange();
  m_compoundId.setFullPath(path.objectIds(), /*keepLonger=*/false);
  m_subent = path.subentId();
}

void VdmDbObjectDependency::linkWillChange() {
  assertWriteEnabled(/*autoUndo=*/false);
  recordLink();
  linkIsNoLongerValid();
}

void VdmDbObjectDependency::linkIsNoLongerValid() const {
  VdmReferenceNotes::note(this);
  if (isDBRO()) g_linkGeneration.fetch_add(1, std::memory_order_relaxed);
}

void VdmDbObjectDependency::setCompoundId(const VdmCompoundObjectId& id) {
  linkWillChange();
  m_compoundId = id;
}

OdDbObjectId VdmDbObjectDependency::getInsertId() const {
  assertReadEnabled();
  return m_compoundId.topId();
}

const VdmCompoundObjectId& VdmDbObjectDependency::compoundId() const { return read(m_compoundId); }

const OdDbSubentId& VdmDbObjectDependency::subentId() const { return read(m_subent); }

// ---- Numbers and properties

int VdmDbObjectDependency::entityTag() const { return read(m_entityTag); }

void VdmDbObjectDependency::setEntityTag(int tag) { setNumber(kUndoTag, m_entityTag, tag); }

OdLong VdmDbObjectDependency::bodyHash() const { return read(m_bodyHash); }

void VdmDbObjectDependency::setBodyHash(OdLong hash) { setNumber(kUndoHash, m_bodyHash, hash); }

void VdmDbObjectDependency::setNumber(UndoStep step, OdLong& number, OdLong value) {
  if (isWriteEnabled() && number == value) return;
  assertWriteEnabled(/*autoUndo=*/false);
  if (OdDbDwgFiler* filer = recordStep(step)) filer->wrInt32(number);
  number = value;
}

const VdmProperties& VdmDbObjectDependency::properties() const { return read(m_properties); }

VdmProperties& VdmDbObjectDependency::propertiesForWrite() {
  assertWriteEnabled();
  return m_properties;
}

// As in a new object: without free properties.
void VdmDbObjectDependency::resetProperties() {
  m_entityTag = 0;
  m_bodyHash = 0;
  if (m_properties.size() == 2) return;
  m_properties.clear();
  mapMembers();
}

// ---- Life

void VdmDbObjectDependency::subExistenceChanged() { VdmReferenceNotes::note(this); }
void VdmDbObjectDependency::subIdSwapped() { VdmReferenceNotes::note(this); }

bool VdmDbObjectDependency::isWatched() const {
  assertReadEnabled();
  for (const OdDbObjectId reactor : getPersistentReactors()) {
    if (!reactor.openObject().isNull()) return true;
  }
  return false;
}

VdmDbObjectDependencyPtr VdmDbObjectDependency::doClone(const OdDbFullSubentPath& path) const {
  assertReadEnabled();
  VdmDbObjectDependencyPtr clone = createObject();
  clone->m_compoundId.setFullPath(path.objectIds(), /*keepLonger=*/false);
  clone->m_subent = path.subentId();
  clone->m_bodyHash = m_bodyHash;
  clone->m_entityTag = m_entityTag;
  return clone;
}

void VdmDbObjectDependency::appendToOwner(OdDbIdPair& pair, OdDbObject* owner,
                                          OdDbIdMapping& mapping) {
  const VdmDbPersIdManagerPtr manager = VdmDbPersIdManager::cast(owner);
  if (manager.isNull()) return OdDbObject::appendToOwner(pair, owner, mapping);
  const VdmOpenUpgrade upgrade(manager);
  manager->onAppendToOwner(this);
}

std::size_t VdmDbObjectDependency::approximateSize() const {
  return sizeof(*this) + m_compoundId.size() * sizeof(VdmCompoundObjectId::Element) +
         OdDbObject::approximateSize();
}

namespace vdmu {

OdString strFSPFromDependency(OdDbObjectId id, bool markErased) {
  const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
  OdDbFullSubentPath path;
  if (dependency.isNull() || dependency->getLinkObject(path, markErased) != ePathOk) {
    return L"invalid path";
  }
  return formatFullSubentPath(path, markErased);
}

}  // namespace vdmu
