// OdDbSymbolTableRecord: base of the named records of symbol tables.
#pragma once

#include "platform/db/db_object.h"
#include "platform/db/filing_macros.h"

class OdDbSymbolTableRecord;
using OdDbSymbolTableRecordPtr = OdSmartPtr<OdDbSymbolTableRecord>;

/// Whether a symbol table takes the name. It is not empty, has no control characters and none
/// of | * \ : ; < > ? " , =, with two exceptions: a leading asterisk and a letter mark an anonymous
/// name ("*U12", "*Model_Space"), and one bar between two valid names marks a record that depends
/// on an external reference ("part|WALLS").
[[nodiscard]] bool odDbIsValidRecordName(const OdString& name);

/// A named record. The name is unique in its table without regard to case. The records that every
/// drawing has (layer "0", model space, ...) can neither be erased nor renamed.
class OdDbSymbolTableRecord : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbSymbolTableRecord)

  [[nodiscard]] OdString getName() const;
  /// In a table: raises eInvalidKey for a name that is not valid, eDuplicateRecordName when another
  /// record has it; the table's entry follows. Outside of a table every name is taken, and checked
  /// when the record is added.
  void setName(const OdString& name);
  /// The name is of the form "xref|name".
  [[nodiscard]] bool isDependent() const;
  /// A record that depends on an external reference is resolved while that is loaded.
  [[nodiscard]] bool isResolved() const;
  void setResolved(bool resolved);

  /// Refuses to erase fixed records (eInvalidInput), and to unerase a record whose name another one
  /// has got meanwhile (eDuplicateRecordName).
  OdResult subErase(bool erasing) override;
  [[nodiscard]] bool isIdSwappable() const override { return false; }
  [[nodiscard]] std::size_t approximateSize() const override;

 private:
  friend class OdDbSymbolTable;

  void storeName(const OdString& name);
  [[nodiscard]] bool isFixed() const;

  OdString m_name;
  bool m_resolved = true;

  OD_DB_DECLARE_FILING()
};
