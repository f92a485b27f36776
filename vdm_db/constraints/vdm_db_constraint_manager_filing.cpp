// Constraint managers: stored form and undo.
#include <algorithm>

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_names.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_object_names.h"
#include "vdm_db/properties/vdm_dwg_utils.h"

namespace {

constexpr OdInt16 kVersion = 2;
constexpr OdInt16 kPropertiesVersion = 2;

bool filesState(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kUndoFiler ||
         filer->filerType() == OdDbDwgFiler::kPageFiler;
}

template <class Ids>
void writeIds(OdDbDwgFiler* filer, const Ids& ids) {
  filer->wrInt32(static_cast<OdInt32>(ids.size()));
  for (const OdDbObjectId& id : ids) filer->wrSoftPointerId(id);
}

template <class Ids>
Ids readIds(OdDbDwgFiler* filer) {
  Ids ids;
  for (OdUInt32 count = filer->rdCount(0); count > 0; --count) ids.insert(filer->rdSoftPointerId());
  return ids;
}

VdmConstraintPtr createConstraint(const OdString& className) {
  const OdRxClass* stored = odrxClassDictionary()->getAt(className);
  if (stored == nullptr || !stored->isDerivedFrom(VdmConstraint::desc()) || stored->isAbstract()) {
    throw OdError(eCorruptData, "constraint of class \"" + className + "\"");
  }
  return VdmConstraintPtr(stored->create());
}

}  // namespace

// ---- Record: the base's fields, then
//
//   1  version         wrInt16            2
//   2  model objects   id array           hard ownership
//   3  reserved ids    id array           hard ownership; kept as they were read
//   4  child managers  id array           soft pointers
//   5  count           wrInt32            of constraints
//   6  constraints     wrString           run-time class name,
//                      record             vdm_constraint_filing.cpp; in rising node id
//   7  properties      VdmProperties::dwgOutFields; from version 2 on
//   8  status          wrInt32            undo and page filers only
//      count           wrInt32            of modified objects
//      objects         wrHardPointerId    each; read as soft pointers
//   9  mark            wrInt16            0; all but file filers

void VdmDbConstraintManager::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  filer->wrInt16(kVersion);
  vdmu::writeHardOwnershipIdArray(filer, m_vdmDbObjects.ids());
  vdmu::writeHardOwnershipIdArray(filer, m_reservedIds);
  vdmu::writeSoftPointerIdArray(filer, m_childManagers.ids());
  filer->wrInt32(static_cast<OdInt32>(m_constraints.size()));
  for (const auto& [nodeId, constraint] : m_constraints) {
    filer->wrString(constraint->isA()->name());
    constraint->dwgOutFields(filer);
  }
  m_properties.dwgOutFields(filer);
  if (filesState(filer)) writeState(filer);
  vdmu::wrMark(filer, 0);
}

void VdmDbConstraintManager::writeState(OdDbDwgFiler* filer) const {
  filer->wrInt32(m_status);
  filer->wrInt32(static_cast<OdInt32>(m_modifiedObjects.size()));
  for (const OdDbObjectId& object : m_modifiedObjects) filer->wrHardPointerId(object);
}

OdResult VdmDbConstraintManager::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  if (const OdResult result = OdDbObject::dwgInFields(filer); result != eOk) return result;
  const OdInt16 version = filer->rdInt16();
  if (version > kVersion) return eCorruptData;
  clearForRead();
  if (filer->filerType() != OdDbDwgFiler::kUndoFiler) m_frozenVariables.clear();
  vdmu::readHardOwnershipIdArray(filer, m_vdmDbObjects.array());
  m_vdmDbObjects.replaced();
  vdmu::readHardOwnershipIdArray(filer, m_reservedIds);
  readChildren(filer);
  if (const OdResult result = readConstraints(filer); result != eOk) return result;
  if (version >= kPropertiesVersion) {
    if (const OdResult result = m_properties.dwgInFields(filer); result != eOk) return result;
  }
  if (filesState(filer)) readState(filer);
  vdmu::rdMark(filer, 0);
  invalidateTCCache();
  return eOk;
}

// Null ids of a file vanish; those that an audit has set are part of the state that undo restores.
void VdmDbConstraintManager::readChildren(OdDbDwgFiler* filer) {
  if (!filesState(filer)) return vdmu::readSoftPointerIdArray(filer, m_childManagers.array());
  for (OdUInt32 count = filer->rdCount(0); count > 0; --count) {
    m_childManagers.array().append(filer->rdSoftPointerId());
  }
}

void VdmDbConstraintManager::clearForRead() {
  for (const auto& [nodeId, constraint] : m_constraints) {
    constraint->setOwner(OdDbObjectId::kNull);
  }  // others may hold it still
  m_constraints.clear();
  m_vdmDbObjects.array().clear();
  m_reservedIds.clear();
  m_childManagers = VdmIndexedIds();
  m_properties.clear();
  m_status = kNotEvaluated;  // unless the stream has another one
  m_modifiedObjects.clear();
  m_names.reset();
  m_variableIndex.clear();
}

OdResult VdmDbConstraintManager::readConstraints(OdDbDwgFiler* filer) {
  OdULong last = 0;
  for (OdUInt32 count = filer->rdCount(); count > 0; --count) {
    const VdmConstraintPtr constraint = createConstraint(filer->rdString());
    if (const OdResult result = constraint->dwgInFields(filer); result != eOk) return result;
    constraint->setOwner(objectId());
    if (constraint->nodeId() <= last) {
      if (last + 1 == 0) throw OdError(eCorruptData, OdString("node ids of constraints"));
      constraint->setNodeId(last + 1);
    }
    last = constraint->nodeId();
    m_constraints.emplace_hint(m_constraints.end(), last, constraint);
  }
  return eOk;
}

void VdmDbConstraintManager::readState(OdDbDwgFiler* filer) {
  const OdInt32 status = filer->rdInt32();
  if (status < kUpToDate || status > kFullyModified) {
    OdString text;
    text.format(L"status %d of a constraint manager, not within %d to %d", status, kUpToDate,
                kFullyModified);
    throw OdError(eCorruptData, text);
  }
  m_status = static_cast<ConstraintManagerStatus>(status);
  m_modifiedObjects = readIds<ModifiedObjects>(filer);
  m_modifiedObjects.erase(OdDbObjectId::kNull);
}

// ---- Undo of parts: a byte that says which, then
//
//   0  state           status, and two lists of ids: those to take from the modified objects, those
//                      to put back
//   1  model objects   an edit of the list (vdm_indexed_ids.h)
//   2  child managers  likewise

OdDbDwgFiler* VdmDbConstraintManager::beginStep(UndoStep step) {
  assertWriteEnabled(/*autoUndo=*/false);
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer != nullptr) filer->wrInt8(static_cast<OdInt8>(step));
  return filer;
}

void VdmDbConstraintManager::changeState(ConstraintManagerStatus status,
                                         const ModifiedObjects& added,
                                         const ModifiedObjects& removed) {
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): `removed` may be the set itself
  const ModifiedObjects gone = removed;
  if (OdDbDwgFiler* filer = beginStep(kStateStep)) {
    filer->wrInt32(m_status);
    writeIds(filer, added);
    writeIds(filer, gone);
  }
  m_status = status;
  for (const OdDbObjectId& object : gone) m_modifiedObjects.erase(object);
  m_modifiedObjects.insert(added.begin(), added.end());
}

void VdmDbConstraintManager::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  invalidateTCCache();
  const OdInt8 step = filer->rdInt8();
  switch (step) {
    case kStateStep:
      return undoStateStep(filer);
    case kRegistryStep:
      m_names.reset();
      return m_vdmDbObjects.applyUndo(filer, beginStep(kRegistryStep));
    case kChildStep:
      return m_childManagers.applyUndo(filer, beginStep(kChildStep));
    default:
      throw OdError(eCorruptData, OdString().format(L"undo step %d of a constraint manager", step));
  }
}

void VdmDbConstraintManager::undoStateStep(OdDbDwgFiler* filer) {
  const auto status = static_cast<ConstraintManagerStatus>(filer->rdInt32());
  const auto removed = readIds<ModifiedObjects>(filer);
  const auto added = readIds<ModifiedObjects>(filer);
  changeState(status, added, removed);
}

// ---- Ids

void VdmDbConstraintManager::subSwapIdWith(const OdDbObjectId& otherId, bool swapExtendedData,
                                           bool swapExtDictionary) {
  assertWriteEnabled();
  OdDbObject::subSwapIdWith(otherId, swapExtendedData, swapExtDictionary);
}

void VdmDbConstraintManager::subIdSwapped() {
  for (const auto& [nodeId, constraint] : m_constraints) constraint->setOwner(objectId());
}

bool VdmDbConstraintManager::hasStateOutsideFile() const {
  const auto isHeld = [](const auto& entry) { return entry.second->numRefs() > 1; };
  return m_status != kNotEvaluated || !m_modifiedObjects.empty() || !m_frozenVariables.empty() ||
         std::any_of(m_constraints.begin(), m_constraints.end(), isHeld);
}

std::size_t VdmDbConstraintManager::approximateSize() const {
  constexpr std::size_t kConstraintSize = sizeof(VdmConstraint) + 256;  // with its properties
  constexpr std::size_t kNodeSize = 64;                                 // of a tree
  return sizeof(*this) + m_constraints.size() * (kConstraintSize + kNodeSize) +
         m_modifiedObjects.size() * kNodeSize +
         (m_vdmDbObjects.ids().size() + m_childManagers.ids().size()) * sizeof(OdDbObjectId);
}
