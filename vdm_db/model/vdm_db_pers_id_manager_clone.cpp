// Persistent id managers: clones, and the merging of managers.
#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/model/vdm_db_pers_id_manager_impl.h"
#include "vdm_db/model/vdm_merge_context.h"

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

// Filing has copied the list, so the clone lists the sources. A source with a clone is replaced by
// it: the clone lists itself through appendToOwner(). The translation of ids deals with the others.
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

void VdmDbPersIdManager::mergeManagers(VdmDbPersIdManager* source, OdDbIdMapping& mapping,
                                       VdmDbReverseIdMapping& reverse,
                                       std::unordered_set<OdDbObjectId>& mergedObjects,
                                       bool keepAll,
                                       std::map<OdDbObjectId, OdDbObjectId>& replaced) {
  if (source == nullptr) {
    throw OdError(eNullPointer, L"mergeManagers : Persistent id manager is NULL");
  }
  VdmMergeContext context{mapping, reverse, keepAll, mergedObjects, replaced};
  if (source != this) takeOver(*source, context);
}

void VdmDbPersIdManager::takeOver(VdmDbPersIdManager& source, VdmMergeContext& context) {
  assertWriteEnabled(/*autoUndo=*/false);
  source.assertWriteEnabled(/*autoUndo=*/false);
  const OdDbObjectIdArray ids = source.m_impl->dependencies.ids();
  const OdDbObjectId block = blockId();
  OdDbObjectIdArray moved;
  for (const OdDbObjectId& id : ids) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
    if (dependency.isNull()) continue;
    const OdDbObjectId top = dependency->getInsertId();
    const bool isWanted = context.keepAll || top.ownerId() == block ||
                          context.reverse.isCloned(top) || dependency->isWatched();
    if (!isWanted) continue;
    dependency->setOwnerId(objectId());
    moved.append(id);
    if (const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(top); !object.isNull()) {
      context.mergedObjects.insert(object->objectId());
    }
  }
  source.removeDependencies(ids);
  appendIds(moved);
  attach(moved);
  context.replaced[source.objectId()] = objectId();
  source.erase();
}
