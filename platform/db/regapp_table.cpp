// OdDbRegAppTable and its records, which have no fields of their own.
#include "platform/db/regapp_table.h"

OD_RX_DEFINE_DB(OdDbRegAppTable, OdDbSymbolTable, L"OdDbRegAppTable", 0, 0, 0, L"APPID_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbRegAppTableRecord, OdDbSymbolTableRecord, L"OdDbRegAppTableRecord", 0, 0, 0,
                L"APPID", OdString())
