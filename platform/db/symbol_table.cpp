// OdDbSymbolTable: entries, their undo steps, filing.
#include "platform/db/symbol_table.h"

#include <string>

#include "platform/base/error.h"
#include "platform/db/database.h"

OD_RX_DEFINE_ABSTRACT(OdDbSymbolTable, OdDbObject, L"OdDbSymbolTable")
OD_RX_DEFINE_ABSTRACT(OdDbSymbolTableIterator, OdRxObject, L"OdDbSymbolTableIterator")

namespace {

constexpr OdUInt8 kVersion = 1;

OdString tableText(const OdDbSymbolTable* table) {
  return table->isA()->name() + " " + table->getDbHandle().ascii();
}

}  // namespace

// ---- Iterator

class OdDbSymbolTable::Iterator : public OdDbSymbolTableIterator {
 public:
  Iterator(const OdDbSymbolTable* table, bool atBeginning, bool skipErased)
      : m_table(table), m_walker(table->m_records, skipErased) {
    if (!atBeginning) m_walker.start(false);
  }

  void start(bool atBeginning, bool skipErased) override {
    m_walker = OdDbNamedIdsWalker(m_table->m_records, skipErased);
    if (!atBeginning) m_walker.start(false);
  }
  [[nodiscard]] bool done() const override { return m_walker.done(); }
  void step(bool forward) override { m_walker.step(forward); }
  bool seek(const OdDbObjectId& id) override { return m_walker.seek(id); }
  [[nodiscard]] OdString getRecordName() const override { return m_walker.name(); }
  [[nodiscard]] OdDbObjectId getRecordId() const override { return m_walker.id(); }

 private:
  OdSmartPtr<OdDbSymbolTable> m_table;  // keeps it open
  OdDbNamedIdsWalker m_walker;
};

OdDbSymbolTableRecordPtr OdDbSymbolTableIterator::getRecord(OdDb::OpenMode mode,
                                                            bool openErased) const {
  return getRecordId().openAs<OdDbSymbolTableRecord>(mode, openErased);
}

OdDbSymbolTableIteratorPtr OdDbSymbolTable::newIterator(bool atBeginning, bool skipErased) const {
  assertReadEnabled();
  return OdRxObjectImpl<Iterator>::createObject(this, atBeginning, skipErased);
}

// ---- Queries

OdDbObjectId OdDbSymbolTable::getAt(const OdString& name, bool getErased) const {
  assertReadEnabled();
  const OdDbNamedId* entry = m_records.find(name);
  if (entry == nullptr || (!getErased && entry->id.isErased())) return OdDbObjectId::kNull;
  return entry->id;
}

OdDbSymbolTableRecordPtr OdDbSymbolTable::getAt(const OdString& name, OdDb::OpenMode mode,
                                                bool openErased) const {
  return getAt(name, openErased).openAs<OdDbSymbolTableRecord>(mode, openErased);
}

bool OdDbSymbolTable::has(const OdDbObjectId& id) const {
  assertReadEnabled();
  return !id.isErased() && m_records.findId(id) != nullptr;
}

OdUInt32 OdDbSymbolTable::numRecords() const {
  assertReadEnabled();
  return m_records.numLive();
}

OdRxClass* OdDbSymbolTable::recordClass() const { return OdDbSymbolTableRecord::desc(); }

// ---- Edits

void OdDbSymbolTable::putEntry(const OdString& name, const OdDbObjectId& id) {
  assertWriteEnabled(/*autoUndo=*/false);
  if (OdDbDwgFiler* filer = beginPartialUndo(desc())) m_records.outStep(filer, name);
  m_records.put(name, id);
}

void OdDbSymbolTable::checkNew(const OdDbSymbolTableRecord* record) const {
  if (record == nullptr) throw OdError(eNullPointer, OdString("record for ") + tableText(this));
  if (!record->isKindOf(recordClass())) {
    throw OdError(eWrongObjectType,
                  OdString("record of class ") + record->isA()->name() + " for " + tableText(this));
  }
  if (database() == nullptr) throw OdError(eNoDatabase, tableText(this));
  const bool isListed = record->database() != nullptr &&
                        (record->database() != database() || record->ownerId() != objectId());
  if (isListed) {
    throw OdError(eAlreadyInDatabase,
                  OdString("record ") + record->getDbHandle().ascii() + " for " + tableText(this));
  }
}

void OdDbSymbolTable::checkFree(const OdString& name, const OdDbObjectId& self) const {
  const OdDbObjectId present = getAt(name);
  if (present.isNull() || present == self) return;
  throw OdError(eDuplicateRecordName, OdString("'") + name + "' is record " +
                                          present.getHandle().ascii() + " of " + tableText(this));
}

OdDbObjectId OdDbSymbolTable::add(OdDbSymbolTableRecord* record) {
  checkNew(record);
  const OdString name = record->getName();
  if (!odDbIsValidRecordName(name)) {
    throw OdError(eInvalidKey, OdString("record name '") + name + "' in " + tableText(this));
  }
  checkFree(name, record->objectId());
  assertWriteEnabled(/*autoUndo=*/false);
  if (record->database() == nullptr) database()->addOdDbObject(record, objectId());
  putEntry(name, record->objectId());
  return record->objectId();
}

void OdDbSymbolTable::rename(const OdString& oldName, const OdString& newName,
                             const OdDbObjectId& id) {
  const OdDbNamedId* old = m_records.find(oldName);
  if (old != nullptr && old->id == id && !oldName.iEquals(newName)) {
    putEntry(oldName, OdDbObjectId::kNull);
  }
  putEntry(newName, id);
}

void OdDbSymbolTable::relist(const OdString& name, const OdDbObjectId& id) {
  const OdDbNamedId* present = m_records.find(name);
  if (present == nullptr || present->id != id) putEntry(name, id);
}

// A step is what stood under a name before: name (string), id (soft pointer, null for no entry).
void OdDbSymbolTable::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdDbNamedId entry = OdDbNamedIds::inStep(filer);
  putEntry(entry.name, entry.id);
}

OdResult OdDbSymbolTable::subErase(bool) { return eInvalidInput; }

// ---- Filing
//
//   version     uint8     1
//   records     int32 count, then per record, in the order of the folded names:
//     name      string    the record's name; each once
//     record    soft ownership

void OdDbSymbolTable::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbObject::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  m_records.dwgOut(filer, OdDb::kSoftOwnershipRef);
}

OdResult OdDbSymbolTable::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  return m_records.dwgIn(filer, OdDb::kSoftOwnershipRef);
}

std::size_t OdDbSymbolTable::approximateSize() const {
  return OdDbObject::approximateSize() + m_records.memoryUsed();
}
