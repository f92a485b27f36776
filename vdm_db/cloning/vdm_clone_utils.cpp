// What mappings of clone operations say, and services around them.
#include "vdm_db/cloning/vdm_clone_utils.h"

#include <algorithm>
#include <vector>

#include "platform/assoc/assoc_2d_constraint_group.h"
#include "platform/assoc/assoc_network.h"
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/entities/block_reference.h"
#include "platform/filer/id_filer.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_handle_text.h"
#include "vdm_db/drawing_utils/vdm_long_transaction_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_xref_utils.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

template <class Accepts>
void appendCloned(OdDbIdMapping& mapping, OdArray<OdDbIdPair>& pairs, const Accepts& accepts) {
  OdDbIdPair pair;
  for (const OdDbIdMappingIterPtr it = mapping.newIterator(); !it->done(); it->next()) {
    if (it->getMap(pair) && pair.isCloned() && accepts(pair.value())) pairs.append(pair);
  }
}

/// Keeps the ids that are filed as owned, null ones as well.
class OwnedObjectsCollectFiler : public OdDbIdFiler {
 public:
  using OdDbIdFiler::OdDbIdFiler;
  OdArray<OdDbObjectId> owned;

  void wrSoftOwnershipId(const OdDbObjectId& id) override { owned.append(id); }
  void wrHardOwnershipId(const OdDbObjectId& id) override { owned.append(id); }
};

}  // namespace

namespace vdmu {

bool isInLongTransaction(OdDbIdMapping& mapping) {
  return isInLongTransaction(mapping.origDb()) || isInLongTransaction(mapping.destDb());
}

void getClonedObjectsByExactType(OdDbIdMapping& mapping, const OdRxClass* cls,
                                 OdArray<OdDbIdPair>& pairs) {
  if (cls == nullptr) return;
  appendCloned(mapping, pairs,
               [cls](const OdDbObjectId& clone) { return clone.objectClass() == cls; });
}

OdArray<OdDbIdPair> convertIdMapToArray(OdDbIdMapping& mapping) {
  OdArray<OdDbIdPair> pairs;
  appendCloned(mapping, pairs, [](const OdDbObjectId& clone) { return !clone.isNull(); });
  return pairs;
}

void putObjectsToIdMap(const std::unordered_set<OdDbObjectId>& ids, OdArray<OdDbIdPair>& pairs) {
  std::vector<OdDbObjectId> sorted(ids.begin(), ids.end());
  std::sort(sorted.begin(), sorted.end(), ObjectIdLess());
  for (const OdDbObjectId& id : sorted) {
    if (!id.isNull()) pairs.append(OdDbIdPair(id, id, /*cloned=*/true));
  }
}

OdDbDatabase* getBlockReferenceDefinitionDb(OdDbObjectId reference) {
  const OdDbBlockReferencePtr opened = reference.openAs<OdDbBlockReference>();
  return opened.isNull() ? nullptr : getXrefBlock(opened->blockTableRecord()).originalDatabase();
}

void delDatabaseDictsBeginWith(OdDbDatabase* database, const OdString& prefix) {
  if (database == nullptr || prefix.isEmpty()) return;
  std::vector<OdString> names;
  {
    const OdDbDictionaryPtr root =
        database->getNamedObjectsDictionaryId().safeOpenAs<OdDbDictionary>();
    for (const OdDbDictionaryIteratorPtr it = root->newIterator(); !it->done(); it->next()) {
      if (!it->name().left(prefix.getLength()).iEquals(prefix)) continue;
      if (isIdOf<OdDbDictionary>(it->objectId())) names.push_back(it->name());
    }
  }
  for (const OdString& name : names) deleteDict(database, name, OdDbObjectId::kNull);
}

void transform2dConstraints(const OdDbObjectId& block, OdGeMatrix3d transform) {
  OdDbObjectIdArray actions = getAssocActions(block);
  for (OdUInt32 i = 0; i < actions.size(); ++i) {
    const OdDbObjectId id = actions[i];
    if (const auto nested = id.openAs<OdDbAssocNetwork>(); !nested.isNull()) {
      actions.append(nested->getActions());
    }
    if (!isIdOf<OdDbAssoc2dConstraintGroup>(id)) continue;
    const OdResult result =
        id.safeOpenAs<OdDbAssoc2dConstraintGroup>(OdDb::kForWrite)->transformActionBy(transform);
    if (result != eOk) throw OdError(result, L"2D constraint group " + handleText(id));
  }
}

OdArray<OdDbObjectId> getOwnerships(const OdDbObject* object) {
  if (object == nullptr) return {};
  OwnedObjectsCollectFiler filer(object->database());
  object->dwgOutFields(&filer);
  return filer.owned;
}

}  // namespace vdmu
