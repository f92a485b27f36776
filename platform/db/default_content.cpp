// What every new drawing holds.
#include "platform/db/default_content.h"

#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/dim_style_table.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/regapp_table.h"
#include "platform/db/text_style_table.h"

namespace {

template <class Table>
OdSmartPtr<Table> addTable(OdDbDatabase* database, OdUInt64 handle) {
  const OdDbObjectId present = database->getOdDbObjectId(OdDbHandle(handle));
  if (!present.isNull()) return present.safeOpenObject(OdDb::kForWrite);
  OdSmartPtr<Table> table = Table::createObject();
  const OdDbObjectId id = database->addOdDbObject(table, OdDbObjectId::kNull, OdDbHandle(handle));
  table = nullptr;
  return id.safeOpenObject(OdDb::kForWrite);
}

// The record comes into the database first, so that it gets its fixed handle.
template <class Record>
OdSmartPtr<Record> addRecord(OdDbSymbolTable* table, const wchar_t* name, OdUInt64 handle) {
  const OdDbObjectId present = table->database()->getOdDbObjectId(OdDbHandle(handle));
  if (!present.isNull()) {
    OdSmartPtr<Record> kept = present.safeOpenObject(OdDb::kForWrite);
    if (!table->has(name)) table->add(kept);
    return kept;
  }
  OdSmartPtr<Record> record = Record::createObject();
  record->setName(name);
  table->database()->addOdDbObject(record, table->objectId(), OdDbHandle(handle));
  table->add(record);
  return record;
}

void makeLinetypes(OdDbDatabase* database) {
  const OdDbLinetypeTablePtr table =
      addTable<OdDbLinetypeTable>(database, OdDbRootHandles::kLinetypeTable);
  addRecord<OdDbLinetypeTableRecord>(table, L"ByBlock", OdDbRootHandles::kLinetypeByBlock);
  addRecord<OdDbLinetypeTableRecord>(table, L"ByLayer", OdDbRootHandles::kLinetypeByLayer);
  const OdDbLinetypeTableRecordPtr continuous = addRecord<OdDbLinetypeTableRecord>(
      table, L"Continuous", OdDbRootHandles::kLinetypeContinuous);
  const OdDbLinetypeTableRecordPtr opened =
      continuous->objectId().safeOpenAs<OdDbLinetypeTableRecord>(OdDb::kForWrite);
  opened->setComments(L"Solid line");
}

void makeLayers(OdDbDatabase* database) {
  const OdDbLayerTablePtr table = addTable<OdDbLayerTable>(database, OdDbRootHandles::kLayerTable);
  const OdDbLayerTableRecordPtr zero =
      addRecord<OdDbLayerTableRecord>(table, L"0", OdDbRootHandles::kLayerZero);
  const OdDbLayerTableRecordPtr opened =
      zero->objectId().safeOpenAs<OdDbLayerTableRecord>(OdDb::kForWrite);
  opened->setLinetypeObjectId(
      database->getOdDbObjectId(OdDbHandle(OdDbRootHandles::kLinetypeContinuous)));
}

void makeStyles(OdDbDatabase* database) {
  const OdDbTextStyleTablePtr texts =
      addTable<OdDbTextStyleTable>(database, OdDbRootHandles::kTextStyleTable);
  addRecord<OdDbTextStyleTableRecord>(texts, L"Standard", OdDbRootHandles::kTextStyleStandard);
  const OdDbDimStyleTablePtr dimensions =
      addTable<OdDbDimStyleTable>(database, OdDbRootHandles::kDimStyleTable);
  addRecord<OdDbDimStyleTableRecord>(dimensions, L"Standard", OdDbRootHandles::kDimStyleStandard);
}

void makeBlocks(OdDbDatabase* database) {
  const OdDbBlockTablePtr table = addTable<OdDbBlockTable>(database, OdDbRootHandles::kBlockTable);
  addRecord<OdDbBlockTableRecord>(table, OdDbBlockTable::kModelSpaceName,
                                  OdDbRootHandles::kModelSpace);
  addRecord<OdDbBlockTableRecord>(table, OdDbBlockTable::kPaperSpaceName,
                                  OdDbRootHandles::kPaperSpace);
}

}  // namespace

void oddbMakeDefaultContent(OdDbDatabase* database) {
  makeLinetypes(database);
  makeLayers(database);
  makeBlocks(database);
  makeStyles(database);
  addTable<OdDbRegAppTable>(database, OdDbRootHandles::kRegAppTable);
  addTable<OdDbDictionary>(database, OdDbRootHandles::kNamedObjectsDictionary);
}
