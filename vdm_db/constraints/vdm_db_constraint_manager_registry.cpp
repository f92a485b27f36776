// Constraint managers: the registry of model objects, and their names.
//
// The registry lists each model object once, in the order in which they came; VdmIndexedIds gives a
// hashed look-up and undo records of single edits, so registering n objects costs n steps. With an
// object whose entity inserts a block, the manager of that block becomes a child, and it leaves the
// children with the first such object that leaves.
//
// A name is a stem and the least number that is free. To find it without a walk over all objects,
// ObjectNames keeps the names in use in upper case, and for each stem the number below which none
// is free. Numbers only become free when an object leaves or is renamed, and each of these either
// drops ObjectNames (here) or raises the generation of names (renaming, undo, loading), after which
// it is built again: the kept number is therefore never too high. A new name costs one look-up for
// each number that was taken since the last one of its stem.
#include "platform/base/case_compare.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint_names.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_names.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_object_names.h"

namespace {

/// The manager of the block that the object's entity inserts; null when it inserts none, or that
/// block has none.
OdDbObjectId managerOfInsertedBlock(const VdmDbObject* object) {
  const auto reference =
      object->attachedEntityId().openAs<OdDbBlockReference>(OdDb::kForRead, /*openErased=*/true);
  if (reference.isNull()) return OdDbObjectId::kNull;
  return vdmu::getObjInExtDict(reference->blockTableRecord(), kVdmDatabaseKey, nullptr);
}

}  // namespace

// ---- Registry

OdDbObjectId VdmDbConstraintManager::getVdmDbObject(const OdDbObjectId& entity) {
  assertReadEnabled();
  const VdmDbObjectPtr present = VdmDbObject::openVdmDbObject(entity, OdDb::kForRead);
  if (!present.isNull()) return present->objectId();
  const VdmOpenUpgrade upgrade(this);
  return VdmDbObject::getInstance(entity, objectId());
}

void VdmDbConstraintManager::registerVdmDbObject(const VdmDbObject* object) {
  assertWriteEnabled(/*autoUndo=*/false);
  const OdDbObjectId id = object->objectId();
  if (m_vdmDbObjects.contains(id)) return;
  OdDbObjectIdArray fresh;
  fresh.append(id);
  m_vdmDbObjects.append(fresh, beginStep(kRegistryStep));
  if (m_names) m_names->taken.insert(odToUpper(object->name()));
  addChildConstraintManager(managerOfInsertedBlock(object));
}

void VdmDbConstraintManager::unregisterVdmDbObject(VdmDbObject* object) {
  assertWriteEnabled(/*autoUndo=*/false);
  OdDbObjectIdArray gone;
  gone.append(object->objectId());
  if (m_vdmDbObjects.contains(gone[0])) {
    m_vdmDbObjects.takeOut(m_vdmDbObjects.positionsOf(gone), beginStep(kRegistryStep));
  }
  m_names.reset();
  const OdDbObjectId child = managerOfInsertedBlock(object);
  if (!child.isNull() && m_childManagers.contains(child)) removeChild(child);
}

void VdmDbConstraintManager::dropFromRegistry(const OdDbObjectIdArray& objects) {
  const OdArray<OdUInt32> positions = m_vdmDbObjects.positionsOf(objects);
  if (positions.isEmpty()) return;
  m_vdmDbObjects.takeOut(positions, beginStep(kRegistryStep));
  m_names.reset();
}

void VdmDbConstraintManager::setVdmDbObjects(const OdDbObjectIdArray& objects) {
  assertWriteEnabled();
  m_vdmDbObjects.array() = objects;
  m_vdmDbObjects.replaced();
  m_names.reset();
}

// ---- Names

VdmDbConstraintManager::ObjectNames& VdmDbConstraintManager::presentNames() {
  if (m_names && m_names->generation == vdmObjectNamesGeneration()) return *m_names;
  m_names.reset();
  auto names = std::make_unique<ObjectNames>();
  for (const OdDbObjectId& id : m_vdmDbObjects.ids()) {
    const auto object = id.openAs<VdmDbObject>(OdDb::kForRead);
    if (!object.isNull()) names->taken.insert(odToUpper(object->name()));
  }
  // Read after the walk: opening objects may have loaded them, which raises the generation.
  names->generation = vdmObjectNamesGeneration();
  m_names = std::move(names);
  return *m_names;
}

OdString VdmDbConstraintManager::generateVdmDbObjectName(const OdString& base) {
  assertReadEnabled();
  ObjectNames& names = presentNames();
  const OdString stem = vdmu::removeNumericSuffix(base);
  int& next = names.nexts.try_emplace(odToUpper(stem), 1).first->second;
  const OdString name = vdmu::takeNumberedName(stem, names.taken, next);
  names.taken.erase(odToUpper(name));  // until an object has it
  return name;
}

void VdmDbConstraintManager::generateVdmDbObjectNames() const {
  const auto pe = VdmDbConstraintManagerPE::cast(this);
  if (pe.isNull()) return;
  std::set<OdString> taken;
  OdDbObjectIdArray unnamed;
  for (const OdDbObjectId& id : m_vdmDbObjects.ids()) {
    const auto object = id.openAs<VdmDbObject>(OdDb::kForRead);
    if (object.isNull()) continue;
    if (object->name().isEmpty()) {
      unnamed.append(id);
    } else {
      taken.insert(odToUpper(object->name()));
    }
  }
  for (const OdDbObjectId& id : unnamed) {
    const auto object = id.openAs<VdmDbObject>(OdDb::kForRead);
    if (object.isNull()) continue;
    const VdmOpenUpgrade upgrade(object);
    const auto entity = object->attachedEntityId().openAs<OdDbEntity>();
    object->setName(vdmu::generateUniqueName(vdmu::removeNumericSuffix(vdmNameBaseOf(entity)),
                                             taken, /*start=*/1, /*tryBase=*/false));
  }
}
