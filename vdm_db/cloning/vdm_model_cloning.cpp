// Copies of blocks with everything that the managers know about them.
//
// The managers of a block lie in its extension dictionary, and cloning entities does not follow to
// them. Here they are cloned in the same operation, after the entities, into a dictionary of their
// own beside the target's managers: each manager takes along what works on entities that have a
// clone. Only then are the ids translated, so that everything that was cloned refers to clones.
// Then the managers of the target take over from the cloned ones, and the dictionary is erased.
#include "vdm_db/cloning/vdm_model_cloning.h"

#include <unordered_set>

#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_parameter_copy_mode.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/references/vdm_clone_mapping.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

/// Of the cloned managers, in the extension dictionary of the target.
constexpr const wchar_t* kClonedManagers = L"VDM_DATABASE_CLONED";

/// What all merges of one clone operation share.
class ManagerMerge {
 public:
  ManagerMerge(OdDbIdMapping& mapping, bool keepAll, std::map<OdDbObjectId, OdDbObjectId>& replaced)
      : m_mapping(mapping), m_reverse(mapping), m_keepAll(keepAll), m_replaced(replaced) {}

  void run() {
    mendPaths();
    const OdDbObjectIdArray persistentIds = clonesOf<VdmDbPersIdManager>();
    const OdDbObjectIdArray features = clonesOf<VdmDbFeatureManager>();
    const OdDbObjectIdArray constraints = clonesOf<VdmDbConstraintManager>();
    for (const OdDbObjectId& id : persistentIds) merge<VdmDbPersIdManager>(id);
    for (const OdDbObjectId& id : features) merge<VdmDbFeatureManager>(id);
    for (const OdDbObjectId& id : constraints) merge<VdmDbConstraintManager>(id);
  }

 private:
  /// Translation of ids has lost those steps of a path that were not cloned, since the destination
  /// had their block already.
  void mendPaths() const {
    OdArray<OdDbIdPair> pairs;
    vdmu::getClonedObjectsByExactType(m_mapping, VdmDbObjectDependency::desc(), pairs);
    vdmu::VdmClonedPaths paths(m_mapping);
    for (const OdDbIdPair& pair : pairs) {
      const VdmDbObjectDependencyPtr source = pair.key().openAs<VdmDbObjectDependency>();
      if (source.isNull() || source->compoundId().isSimpleObjectId()) continue;
      const VdmDbObjectDependencyPtr clone =
          pair.value().openAs<VdmDbObjectDependency>(OdDb::kForWrite);
      if (clone.isNull()) continue;
      if (vdmu::isValidObjectIdPath(clone->getLinkObject(/*openErased=*/false).objectIds(),
                                    /*allowErased=*/false)) {
        continue;
      }
      OdDbObjectIdArray mapped;
      if (paths.map(source->getLinkObject(/*openErased=*/false).objectIds(), mapped)) {
        clone->setLinkObject({mapped, source->subentId()});
      }
    }
  }

  template <class Manager>
  OdDbObjectIdArray clonesOf() const {
    OdDbObjectIdArray clones;
    OdDbIdPair pair;
    for (const OdDbIdMappingIterPtr it = m_mapping.newIterator(); !it->done(); it->next()) {
      if (it->getMap(pair) && pair.isCloned() && vdmu::isIdOf<Manager>(pair.value())) {
        clones.append(pair.value());
      }
    }
    return clones;
  }

  template <class Manager>
  void merge(const OdDbObjectId& clone) {
    const OdSmartPtr<Manager> source = clone.openAs<Manager>(OdDb::kForWrite);
    if (source.isNull()) return;  // merged already
    const OdDbObjectId block = source->blockId();
    if (block.isNull()) return;
    const OdDbObjectId present = Manager::getInstance(block, /*create=*/true);
    if (present == clone) return;
    present.safeOpenAs<Manager>(OdDb::kForWrite)
        ->mergeManagers(source, m_mapping, m_reverse, m_mergedObjects, m_keepAll, m_replaced);
  }

  OdDbIdMapping& m_mapping;
  VdmDbReverseIdMapping m_reverse;
  const bool m_keepAll;
  std::unordered_set<OdDbObjectId> m_mergedObjects;
  std::map<OdDbObjectId, OdDbObjectId>& m_replaced;
};

OdDbObjectIdArray managersOf(const OdDbObjectId& block) {
  OdDbObjectIdArray managers;
  for (const OdDbObjectId& id : {VdmDbPersIdManager::getInstance(block, /*create=*/false),
                                 VdmDbFeatureManager::getInstance(block, /*create=*/false),
                                 VdmDbConstraintManager::getInstance(block, /*create=*/false)}) {
    if (!id.isNull()) managers.append(id);
  }
  return managers;
}

OdResult cloneEntities(const OdDbObjectId& source, const OdDbObjectId& target,
                       OdSmartPtr<OdDbIdMapping>& mapping) {
  if (source.database() == target.database()) {
    return vdmu::cloneBlock(source, target, /*deferXlation=*/true, mapping, nullptr);
  }
  const bool isDone =
      vdmu::wblockBlock(source, nullptr, /*deferXlation=*/true, mapping, target) == target;
  return isDone ? eOk : eGeneralFailure;
}

// Translates the ids of all clones, too.
OdResult cloneManagers(const OdDbObjectId& source, const OdDbObjectId& owner,
                       OdDbIdMapping& mapping) {
  const OdDbObjectIdArray managers = managersOf(source);
  OdDbDatabase* from = source.database();
  return from == owner.database()
             ? from->deepCloneObjects(managers, owner, mapping)
             : from->wblockCloneObjects(managers, owner, mapping, OdDb::kDrcIgnore);
}

}  // namespace

namespace vdmu {

void mergeClonedManagers(OdDbIdMapping& mapping, bool keepAll,
                         std::map<OdDbObjectId, OdDbObjectId>& replaced) {
  ManagerMerge(mapping, keepAll, replaced).run();
}

OdResult cloneBlockWithModel(const OdDbObjectId& source, const OdDbObjectId& target,
                             OdSmartPtr<OdDbIdMapping>& mapping) {
  if (!isIdOf<OdDbBlockTableRecord>(source) || !isIdOf<OdDbBlockTableRecord>(target)) {
    return eWrongObjectType;
  }
  if (source == target) return eInvalidInput;
  const VdmParameterCopyModeElevate mode(source.database());
  if (mapping.isNull()) mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  OdDbTransaction transaction(target.database());
  OdResult result = cloneEntities(source, target, mapping);
  if (result == eOk) {
    result = cloneAssocActions(source.database(), getAssocActions(source), target, *mapping,
                               /*deferXlation=*/true);
  }
  if (result != eOk) return result;
  const OdDbObjectId cloned = createNewDict(target.database(), kClonedManagers, target);
  result = cloneManagers(source, cloned, *mapping);
  if (result != eOk) return result;
  std::map<OdDbObjectId, OdDbObjectId> replaced;
  mergeClonedManagers(*mapping, /*keepAll=*/false, replaced);
  deleteDict(target.database(), kClonedManagers, target);
  return transaction.commit();
}

}  // namespace vdmu
