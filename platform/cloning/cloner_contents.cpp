// Cloning what one block holds into a block of another drawing.
#include "platform/cloning/cloner.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"

namespace {

OdDbObjectIdArray liveEntities(const OdDbBlockTableRecord* block) {
  OdDbObjectIdArray ids;
  for (const OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
    ids.append(it->objectId());
  }
  return ids;
}

OdDbObjectIdArray entriesOf(OdDbObjectId dictionaryId) {
  OdDbObjectIdArray ids;
  const OdDbDictionaryPtr dictionary = dictionaryId.openAs<OdDbDictionary>();
  if (dictionary.isNull()) return ids;
  for (const OdDbDictionaryIteratorPtr it = dictionary->newIterator(); !it->done(); it->next()) {
    ids.append(it->objectId());
  }
  return ids;
}

}  // namespace

OdResult OdDbCloner::cloneContents(const OdDbBlockTableRecord* from, OdDbBlockTableRecord* to,
                                   OdDbIdMapping& mapping, OdDb::DuplicateRecordCloning drc) {
  to->setOrigin(from->origin());
  const OdResult result = from->database()->wblockCloneObjects(liveEntities(from), to->objectId(),
                                                               mapping, drc, /*deferXlation=*/true);
  if (result != eOk) return result;
  const OdDbObjectIdArray entries = entriesOf(from->extensionDictionary());
  const OdDbObjectId owner = entries.isEmpty() ? to->objectId() : to->createExtensionDictionary();
  return from->database()->wblockCloneObjects(entries, owner, mapping, drc);
}
