// Cloning operations of a database.
#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/db_variables.h"
#include "platform/db/deep_clone.h"
#include "platform/db/dictionary.h"
#include "platform/db/host_app_services.h"
#include "platform/db/id_mapping.h"

namespace {

OdDbObjectIdArray liveEntities(const OdDbBlockTableRecord* block) {
  OdDbObjectIdArray ids;
  for (const OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
    ids.append(it->objectId());
  }
  return ids;
}

void copyVariables(const OdDbDatabase* from, OdDbDatabase* to) {
  for (const OdDbVariableRow& row : OdDbVariables::rows()) {
    const OdString name(row.name);
    to->setSysVar(name, from->getSysVar(name));
  }
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

OdResult OdDbDatabase::deepCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                                        OdDbIdMapping& mapping, bool deferXlation) {
  mapping.setOrigDb(this);
  mapping.setDestDb(this);
  return OdDbCloner(mapping, OdDbDwgFiler::kDeepCloneFiler).run(ids, owner, deferXlation);
}

OdResult OdDbDatabase::wblockCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                                          OdDbIdMapping& mapping, OdDb::DuplicateRecordCloning drc,
                                          bool deferXlation) {
  mapping.setOrigDb(this);
  if (!owner.isNull()) mapping.setDestDb(owner.originalDatabase());
  mapping.setDuplicateRecordCloning(drc);
  return OdDbCloner(mapping, OdDbDwgFiler::kWblockCloneFiler).run(ids, owner, deferXlation);
}

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

OdDbDatabasePtr OdDbDatabase::wblock(const OdDbObjectId& block) {
  const OdDbBlockTableRecordPtr source = block.openAs<OdDbBlockTableRecord>();
  if (source.isNull() || block.originalDatabase() != this) {
    throw OdError(eWrongObjectType,
                  L"object " + block.getHandle().ascii() + L" is no block of this drawing");
  }
  const OdDbDatabasePtr drawing = appServices()->createDatabase();
  copyVariables(this, drawing);
  if (source->blockInsertUnits() != OdDb::kUnitsUndefined) {
    drawing->setINSUNITS(source->blockInsertUnits());
  }
  const OdDbObjectId modelSpaceId = drawing->getModelSpaceId();
  {
    const OdDbBlockTableRecordPtr modelSpace =
        modelSpaceId.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcWblock);
    const OdResult result =
        OdDbCloner::cloneContents(source, modelSpace, *mapping, OdDb::kDrcIgnore);
    if (result != eOk) {
      throw OdError(result, L"writing block " + source->getName() + L" to a new drawing");
    }
  }
  drawing->clearUndo();
  return drawing;
}
