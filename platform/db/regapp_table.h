// OdDbRegAppTable and its records: the applications that may hang extended data on objects.
#pragma once

#include "platform/db/symbol_table.h"

/// A registered application; it has a name and nothing else.
class OdDbRegAppTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbRegAppTableRecord)
};
using OdDbRegAppTableRecordPtr = OdSmartPtr<OdDbRegAppTableRecord>;

class OdDbRegAppTable : public OdDbSymbolTableOf<OdDbRegAppTableRecord> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbRegAppTable)
};
using OdDbRegAppTablePtr = OdSmartPtr<OdDbRegAppTable>;
