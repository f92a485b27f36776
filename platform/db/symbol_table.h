// OdDbSymbolTable: base of the tables of named records.
#pragma once

#include "platform/db/named_ids.h"
#include "platform/db/symbol_table_record.h"

class OdDbSymbolTable;
using OdDbSymbolTablePtr = OdSmartPtr<OdDbSymbolTable>;

/// Walks the records of a table in the order of their folded names. Keeps the table open for read;
/// records may be added, renamed and erased during the walk.
class OdDbSymbolTableIterator : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbSymbolTableIterator)

  virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
  [[nodiscard]] virtual bool done() const = 0;
  virtual void step(bool forward = true) = 0;
  /// Moves to a record; false, and stays, when the table has no such record.
  virtual bool seek(const OdDbObjectId& id) = 0;
  /// Name of the present record as the table has it; does not load it.
  [[nodiscard]] virtual OdString getRecordName() const = 0;
  /// Null when the walk is done.
  [[nodiscard]] virtual OdDbObjectId getRecordId() const = 0;
  [[nodiscard]] OdDbSymbolTableRecordPtr getRecord(OdDb::OpenMode mode = OdDb::kForRead,
                                                   bool openErased = false) const;
};
using OdDbSymbolTableIteratorPtr = OdSmartPtr<OdDbSymbolTableIterator>;

/// Named records of one class, owned by the table. The names stand in the table, too, so that
/// looking up loads no record. Changes of entries are undone entry by entry. Tables are never
/// erased.
class OdDbSymbolTable : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbSymbolTable)

  /// Null when there is no record of the name; erased ones count when they are asked for.
  [[nodiscard]] OdDbObjectId getAt(const OdString& name, bool getErased = false) const;
  /// The record, opened; null when there is none or it cannot be opened.
  [[nodiscard]] OdDbSymbolTableRecordPtr getAt(const OdString& name, OdDb::OpenMode mode,
                                               bool openErased = false) const;
  [[nodiscard]] bool has(const OdString& name) const { return !getAt(name).isNull(); }
  [[nodiscard]] bool has(const OdDbObjectId& id) const;
  /// Number of records that are not erased: linear.
  [[nodiscard]] OdUInt32 numRecords() const;
  [[nodiscard]] OdDbSymbolTableIteratorPtr newIterator(bool atBeginning = true,
                                                       bool skipErased = true) const;

  /// Adds a record under its name and returns its id. One that is in no database is added to the
  /// table's; one that has this table as owner already is only listed. Raises eNullPointer,
  /// eWrongObjectType when the record's class is not the table's, eInvalidKey for a bad name,
  /// eDuplicateRecordName, eNoDatabase, eAlreadyInDatabase.
  virtual OdDbObjectId add(OdDbSymbolTableRecord* record);

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  void applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) override;
  OdResult subErase(bool erasing) override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  /// Class of the records.
  [[nodiscard]] virtual OdRxClass* recordClass() const;
  [[nodiscard]] const OdDbNamedIds& records() const { return m_records; }

 private:
  friend class OdDbSymbolTableRecord;
  class Iterator;

  void checkNew(const OdDbSymbolTableRecord* record) const;
  void checkFree(const OdString& name, const OdDbObjectId& self) const;
  void rename(const OdString& oldName, const OdString& newName, const OdDbObjectId& id);
  void relist(const OdString& name, const OdDbObjectId& id);
  void putEntry(const OdString& name, const OdDbObjectId& id);

  OdDbNamedIds m_records;
};

/// A table of records of one class. Not a run-time class: the table that derives from it names
/// OdDbSymbolTable as its parent.
template <class Record>
class OdDbSymbolTableOf : public OdDbSymbolTable {
 protected:
  [[nodiscard]] OdRxClass* recordClass() const override { return Record::desc(); }
};
