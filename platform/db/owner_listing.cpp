// What lists objects by name, and entering an object there.
#include "platform/db/owner_listing.h"

#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/dictionary.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/symbol_table.h"

OdString oddbRecordName(const OdDbObject* object) {
  const OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(object);
  if (!record.isNull()) return record->getName();
  const OdDbDictionaryPtr dictionary = object->ownerId().openAs<OdDbDictionary>();
  return dictionary.isNull() ? OdString() : dictionary->nameAt(object->objectId());
}

bool oddbListsByName(const OdDbObject* owner) {
  return owner->isKindOf(OdDbDictionary::desc()) || owner->isKindOf(OdDbSymbolTable::desc());
}

OdDbObjectId oddbEntryAt(const OdDbObject* owner, const OdString& name) {
  const OdDbDictionaryPtr dictionary = OdDbDictionary::cast(owner);
  if (!dictionary.isNull()) return dictionary->getAt(name);
  const OdDbSymbolTablePtr table = OdDbSymbolTable::cast(owner);
  return table.isNull() ? OdDbObjectId::kNull : table->getAt(name);
}

void oddbListWithOwner(OdDbObject* object, OdDbObject* owner, const OdString& name) {
  const bool isEntity = object->isKindOf(OdDbEntity::desc());
  const OdDbBlockTableRecordPtr block = OdDbBlockTableRecord::cast(owner);
  if (isEntity && !block.isNull()) {
    const OdDbOpenUpgrade upgrade(block);
    block->appendOdDbEntity(OdDbEntity::cast(object));
    return;
  }
  const OdDbDictionaryPtr dictionary = OdDbDictionary::cast(owner);
  if (!dictionary.isNull()) {
    const OdDbOpenUpgrade upgrade(dictionary);
    dictionary->setAt(name, object);
    return;
  }
  const OdDbSymbolTablePtr table = OdDbSymbolTable::cast(owner);
  if (table.isNull()) return;
  const OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(object);
  if (record.isNull()) {
    throw OdError(eWrongObjectType,
                  object->isA()->name() + L" is no record of table " + owner->isA()->name());
  }
  const OdDbOpenUpgrade upgrade(table);
  table->add(record);
}
