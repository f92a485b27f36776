// OdDbDimStyleTable and its records: the dimension styles of a drawing.
#pragma once

#include "platform/db/color.h"
#include "platform/db/filing_macros.h"
#include "platform/db/symbol_table.h"

/// A dimension style. Each row of dim_var_rows.inc is a variable with a getter and a setter, such
/// as `double dimtxt() const` and `void setDimtxt(double)`; setters raise eInvalidInput for a value
/// that the row's check refuses.
class OdDbDimStyleTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDimStyleTableRecord)

#define OD_DIM_VAR(Type, name, Name, First, Code, Check) \
  [[nodiscard]] Type name() const;                       \
  void set##Name(const Type& value);
#include "platform/db/dim_var_rows.inc"
#undef OD_DIM_VAR

  /// Style of the texts; null is the drawing's style "Standard".
  [[nodiscard]] OdDbObjectId dimtxsty() const;
  void setDimtxsty(const OdDbObjectId& textStyle);

 private:
#define OD_DIM_VAR(Type, name, Name, First, Code, Check) Type m_##name = First;
#include "platform/db/dim_var_rows.inc"
#undef OD_DIM_VAR
  OdDbObjectId m_textStyle;

  OD_DB_DECLARE_FILING()
};
using OdDbDimStyleTableRecordPtr = OdSmartPtr<OdDbDimStyleTableRecord>;

class OdDbDimStyleTable : public OdDbSymbolTableOf<OdDbDimStyleTableRecord> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDimStyleTable)
};
using OdDbDimStyleTablePtr = OdSmartPtr<OdDbDimStyleTable>;
