// Constraint managers: which model objects a clone takes along.
#include "platform/cloning/id_mapping.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_exchanged_ids.h"

// An entity is cloned when it is in the mapping. It also is when its whole block is cloned: the
// extension dictionary of a block is cloned before its entities, so these are not in the mapping
// yet.
OdDbObjectIdArray VdmDbConstraintManager::objectsClonedWith(OdDbIdMapping& mapping) const {
  if (mapping.deepCloneContext() == OdDb::kDcInsertCopy) return m_vdmDbObjects.ids();
  const OdDbObjectId block = blockId();
  OdDbIdPair ofBlock(block);
  const bool isBlockCloned = mapping.compute(ofBlock) && ofBlock.isCloned();
  OdDbObjectIdArray cloned;
  for (const OdDbObjectId& id : m_vdmDbObjects.ids()) {
    const auto object = id.openAs<VdmDbObject>(OdDb::kForRead);
    if (object.isNull()) continue;
    const OdDbObjectId entity = object->attachedEntityId();
    OdDbIdPair pair(entity);
    const bool followsBlock = isBlockCloned && !entity.isErased() && entity.ownerId() == block;
    if (followsBlock || mapping.compute(pair)) cloned.append(id);
  }
  return cloned;
}

/// The constraints of a clone were read before it had an id.
OdDbObjectPtr VdmDbConstraintManager::withOwnConstraints(OdDbObjectPtr clone) {
  const auto manager = VdmDbConstraintManager::cast(clone);
  if (!manager.isNull()) manager->subIdSwapped();
  return clone;
}

OdDbObjectPtr VdmDbConstraintManager::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                                   bool isPrimary) const {
  const VdmExchangedIds filtered(m_vdmDbObjects, objectsClonedWith(mapping));
  return withOwnConstraints(OdDbObject::subDeepClone(mapping, owner, isPrimary));
}

OdDbObjectPtr VdmDbConstraintManager::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                                     bool isPrimary) const {
  const VdmExchangedIds filtered(m_vdmDbObjects, objectsClonedWith(mapping));
  return withOwnConstraints(OdDbObject::subWblockClone(mapping, owner, isPrimary));
}
