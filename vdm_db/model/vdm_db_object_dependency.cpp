// Persistent references to geometry.
#include "vdm_db/model/vdm_db_object_dependency.h"

#include <atomic>

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/properties/vdm_dwg_utils.h"
#include "vdm_db/references/vdm_path_utils.h"

VDM_DEFINE_DB_CLASS(VdmDbObjectDependency, OdDbObject, L"VdmDbObjectDependency",
                    L"VDMDBOBJECTDEPENDENCY", L"3D constraints data")

namespace {

// Versions of the record's extended form, and the number that stands ahead of them where the oldest
// form has the type of the subentity.
constexpr OdInt32 kExtendedFormMark = -1;
constexpr OdInt32 kStringPropertiesVersion = 2;
constexpr OdInt32 kPresentVersion = 3;

// Filers of this version and older ones know the oldest form only.
constexpr OdInt32 kLastVersionWithoutExtendedForm = 29;

std::atomic<OdUInt64> g_linkGeneration{0};

bool filesForUndo(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kUndoFiler;
}

void writeStrings(OdDbDwgFiler* filer, const OdArray<OdString>& strings) {
  filer->wrInt32(static_cast<OdInt32>(strings.size()));
  for (const OdString& string : strings) filer->wrString(string);
}

OdArray<OdString> readStrings(OdDbDwgFiler* filer) {
  OdArray<OdString> strings;
  for (OdUInt32 count = filer->rdCount(); count > 0; --count) strings.append(filer->rdString());
  return strings;
}

// One id of the drawing and nothing else: what most paths are.
bool isPlainId(const VdmCompoundObjectId& path) {
  if (path.size() != 1 || !path.sideStrings().isEmpty()) return false;
  const VdmCompoundObjectId::Element& element = path.elements()[0];
  return element.kind == VdmCompoundObjectId::kId && element.flag == 0;
}

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

void VdmDbObjectDependency::setCompoundId(const VdmCompoundObjectId& id) {
  linkWillChange();
  m_compoundId = id;
}

OdDbObjectId VdmDbObjectDependency::getInsertId() const {
  assertReadEnabled();
  return m_compoundId.topId();
}

const VdmCompoundObjectId& VdmDbObjectDependency::compoundId() const {
  assertReadEnabled();
  return m_compoundId;
}

const OdDbSubentId& VdmDbObjectDependency::subentId() const {
  assertReadEnabled();
  return m_subent;
}

// ---- Numbers and properties

int VdmDbObjectDependency::entityTag() const {
  assertReadEnabled();
  return m_entityTag;
}

void VdmDbObjectDependency::setEntityTag(int tag) { setNumber(kUndoTag, m_entityTag, tag); }

OdLong VdmDbObjectDependency::bodyHash() const {
  assertReadEnabled();
  return m_bodyHash;
}

void VdmDbObjectDependency::setBodyHash(OdLong hash) { setNumber(kUndoHash, m_bodyHash, hash); }

void VdmDbObjectDependency::setNumber(UndoStep step, OdLong& number, OdLong value) {
  if (isWriteEnabled() && number == value) return;
  assertWriteEnabled(/*autoUndo=*/false);
  if (OdDbDwgFiler* filer = recordStep(step)) filer->wrInt32(number);
  number = value;
}

const VdmProperties& VdmDbObjectDependency::properties() const {
  assertReadEnabled();
  return m_properties;
}

VdmProperties& VdmDbObjectDependency::propertiesForWrite() {
  assertWriteEnabled();
  return m_properties;
}

// As in a new object: free properties go.
void VdmDbObjectDependency::resetProperties() {
  m_entityTag = 0;
  m_bodyHash = 0;
  if (m_properties.size() == 2) return;
  m_properties.clear();
  mapMembers();
}

// ---- Life

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

// ---- Partial undo: a step (uint8), then what it restores
//
//   link   bool: the path is one plain id; that id by soft pointer, or the compound id and its
//          side strings (int32 count, strings); int32 type, int64 index of the subentity
//   tag    int32
//   hash   int32

OdDbDwgFiler* VdmDbObjectDependency::recordStep(UndoStep step) {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer != nullptr) filer->wrUInt8(step);
  return filer;
}

void VdmDbObjectDependency::linkWillChange() {
  assertWriteEnabled(/*autoUndo=*/false);
  recordLink();
  if (isDBRO()) g_linkGeneration.fetch_add(1, std::memory_order_relaxed);
}

void VdmDbObjectDependency::recordLink() {
  OdDbDwgFiler* filer = recordStep(kUndoLink);
  if (filer == nullptr) return;
  const bool isPlain = isPlainId(m_compoundId);
  filer->wrBool(isPlain);
  if (isPlain) {
    filer->wrSoftPointerId(m_compoundId.topId());
  } else {
    m_compoundId.dwgOutFields(filer, database());
    writeStrings(filer, m_compoundId.sideStrings());
  }
  filer->wrInt32(m_subent.type());
  filer->wrInt64(m_subent.index());
}

void VdmDbObjectDependency::readLinkStep(OdDbDwgFiler* filer) {
  if (filer->rdBool()) {
    m_compoundId.setTopId(filer->rdSoftPointerId());
    m_compoundId.setSideStrings({});
  } else {
    m_compoundId.dwgInFields(filer, 0);
    m_compoundId.setSideStrings(readStrings(filer));
  }
  const OdInt32 type = filer->rdInt32();
  m_subent = OdDbSubentId(static_cast<OdDb::SubentType>(type), filer->rdInt64());
}

void VdmDbObjectDependency::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdUInt8 step = filer->rdUInt8();
  switch (step) {
    case kUndoLink:
      linkWillChange();
      return readLinkStep(filer);
    case kUndoTag:
      return setNumber(kUndoTag, m_entityTag, filer->rdInt32());
    case kUndoHash:
      return setNumber(kUndoHash, m_bodyHash, filer->rdInt32());
    default:
      throw OdError(eCorruptData, OdString().format(L"undo step %d of a dependency", step));
  }
}

// ---- Filing: the base's part, then
//
//   top         hard pointer in files, soft pointer elsewhere; null unless the first element of the
//               path is an id
//   extended    only when the tag or the hash is not 0, or the path has several elements, and not
//               for drawing versions up to 29:
//     mark        int32   -1
//     version     int32   3
//     properties  bag
//     path        compound id
//   type        int32
//   index       int32   the low half
//
// An undo record always has the extended part, and behind the index the whole index (int64) and the
// side strings of the path (int32 count, strings): nothing gets lost by undo.
//
// Reading goes by the first number behind the id. Not negative, it is the type, and the id is the
// path. Otherwise a version follows: 0 and 1 have no properties, 2 has them as strings and is not
// read any further, above 3 is refused.

bool VdmDbObjectDependency::needsExtendedForm(const OdDbDwgFiler* filer) const {
  if (filesForUndo(filer)) return true;
  return filer->dwgVersion() > kLastVersionWithoutExtendedForm &&
         (m_entityTag != 0 || m_bodyHash != 0 || !m_compoundId.isSimpleObjectId());
}

void VdmDbObjectDependency::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  filer->wrId(filer->filerType() == OdDbDwgFiler::kFileFiler ? OdDb::kHardPointerRef
                                                             : OdDb::kSoftPointerRef,
              m_compoundId.topId());
  if (needsExtendedForm(filer)) {
    filer->wrInt32(kExtendedFormMark);
    filer->wrInt32(kPresentVersion);
    m_properties.dwgOutFields(filer);
    m_compoundId.dwgOutFields(filer, database());
  }
  filer->wrInt32(m_subent.type());
  filer->wrInt32(static_cast<OdInt32>(m_subent.index()));
  if (!filesForUndo(filer)) return;
  filer->wrInt64(m_subent.index());
  writeStrings(filer, m_compoundId.sideStrings());
}

OdResult VdmDbObjectDependency::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  if (isDBRO() && m_compoundId.size() != 0) {
    g_linkGeneration.fetch_add(1, std::memory_order_relaxed);
  }
  const OdDbObjectId top =
      filer->rdId(filer->filerType() == OdDbDwgFiler::kFileFiler ? OdDb::kHardPointerRef
                                                                 : OdDb::kSoftPointerRef);
  OdInt32 type = filer->rdInt32();
  OdInt32 index = filer->rdInt32();
  if (type >= 0) {
    m_compoundId.setTopId(top);
    resetProperties();
  } else {
    const OdResult extended = readExtendedForm(filer, /*version=*/index);
    if (extended != eOk) return extended;
    type = filer->rdInt32();
    index = filer->rdInt32();
  }
  const auto subentType = static_cast<OdDb::SubentType>(type);
  if (filesForUndo(filer)) {
    m_subent = OdDbSubentId(subentType, filer->rdInt64());
    m_compoundId.setSideStrings(readStrings(filer));
    return eOk;
  }
  if (type < 0 || index < 0) return eCorruptData;
  m_subent = OdDbSubentId(subentType, index);
  return eOk;
}

OdResult VdmDbObjectDependency::readExtendedForm(OdDbDwgFiler* filer, OdInt32 version) {
  if (version > kPresentVersion) return eUnsupportedVersion;
  if (version == kStringPropertiesVersion) {
    const OdResult result = vdmu::dwgInOldPropertyMap(filer, m_properties);
    mapMembers();
    return result == eOk ? eNotApplicable : eCorruptData;
  }
  if (version == kPresentVersion) {
    const OdResult result = m_properties.dwgInFields(filer);
    if (result != eOk) return result;
  } else {
    resetProperties();
  }
  return m_compoundId.dwgInFields(filer, 0);
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
