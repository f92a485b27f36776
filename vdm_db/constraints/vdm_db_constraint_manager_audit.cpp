// Constraint managers: finding and repairing what does not fit together.
#include <unordered_set>

#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/block_table_record.h"
#include "vdm_db/constraints/vdm_constraint_cleanup.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_iterator_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_pe.h"

namespace {

/// The entity knows its model object as a reactor afterwards. Raises without an entity.
void mendReactor(const VdmDbObject* object) {
  const OdDbObjectId entityId = object->attachedEntityId();
  if (entityId.isNull()) throw OdError(OdString("pVdmObj->attachedEntityId() = NULL"));
  const OdDbObjectPtr entity = entityId.openObject(OdDb::kForRead);
  if (entity.isNull() || entity->hasPersistentReactor(object->objectId())) return;
  const VdmOpenUpgrade upgrade(entity);
  entity->addPersistentReactor(object->objectId());
}

void notifyExtension(VdmDbObject* object) {
  const auto pe = VdmDbObjectPE::cast(object);
  if (pe.isNull()) return;
  const OdDbObjectPtr entity = object->attachedEntityId().openObject(OdDb::kForRead);
  if (!entity.isNull()) pe->entityChanged(entity.get(), object->objectId());
}

/// Counts, and with fixing removes, reactors of the entity that belong to another entity.
void auditReactors(OdDbEntity* entity, OdDbAuditInfo* info) {
  for (const OdDbObjectId& reactor : entity->getPersistentReactors()) {
    if (!vdmu::isIdOf<VdmDbObject>(reactor)) continue;
    const auto object = reactor.openAs<VdmDbObject>(OdDb::kForRead);
    if (object.isNull() || object->attachedEntityId() == entity->objectId()) continue;
    info->printInfo(OdString().format(L"%ls reactor %ls attached to %ls",
                                      entity->getDbHandle().ascii().c_str(),
                                      reactor.getHandle().ascii().c_str(),
                                      object->attachedEntityId().getHandle().ascii().c_str()));
    info->noteFinding({L"reactor-of-another", entity->getDbHandle(),
                       entity->isA()->name() + L"(" + entity->getDbHandle().ascii() + L")",
                       L"reactor " + reactor.getHandle().ascii(), L"a model object of the entity",
                       L"no reactor"});
    if (!info->fixErrors()) {
      info->errorsFound(1);
      continue;
    }
    const VdmOpenUpgrade upgrade(entity);
    entity->removePersistentReactor(reactor);
    info->errorsFixed(1);
  }
}

}  // namespace

void VdmDbConstraintManager::audit(OdDbAuditInfo* info) {
  OdDbObject::audit(info);
  const auto block = blockId().openAs<OdDbBlockTableRecord>(OdDb::kForRead);
  if (block.isNull()) return;
  for (const auto iterator = block->newIterator(); !iterator->done(); iterator->step()) {
    const OdDbEntityPtr entity = vdmu::getPtrFromIterator<OdDbEntity>(iterator);
    if (!entity.isNull()) auditReactors(entity, info);
  }
}

void VdmDbConstraintManager::doAudit() {
  auditRegistry();
  auditChildren();
  vdmu::removeInvalidConstraints(this);
}

void VdmDbConstraintManager::auditRegistry() {
  const OdDbObjectIdArray registered = m_vdmDbObjects.ids();
  OdDbObjectIdArray present;
  for (const OdDbObjectId& id : registered) {
    if (id.isErased()) continue;
    const VdmDbObjectPtr object = id.safeOpenAs<VdmDbObject>(OdDb::kForWrite);
    mendReactor(object);
    notifyExtension(object);
    present.append(id);
  }
  if (present.size() != registered.size()) setVdmDbObjects(present);
}

void VdmDbConstraintManager::auditChildren() {
  std::unordered_set<OdDbObjectId, vdmu::OdDbObjectIdHash> seen;
  const OdDbObjectIdArray children = m_childManagers.ids();
  for (OdUInt32 i = 0; i < children.size(); ++i) {
    if (children[i].isNull() || seen.insert(children[i]).second) continue;
    assertWriteEnabled();
    m_childManagers.array().setAt(i, OdDbObjectId::kNull);
  }
}
