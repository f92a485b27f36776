// OdDbRegAppTable and its records: the applications that may hang extended data on objects.
#pragma once

#include "platform/db/symbol_table.h"

/// A registered application; it has a name and nothing else.
class OdDbRegAppTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbRegAppTableRecord)
};
using OdDbRegAppTableRecordPtr = OdSmartPtr<OdDbRegAppTableRecord>;

class OdDbRegAppTable : public OdDbSymbolTable {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbRegAppTable)

 protected:
  [[nodiscard]] OdRxClass* recordClass() const override;
};
using OdDbRegAppTablePtr = OdSmartPtr<OdDbRegAppTable>;
