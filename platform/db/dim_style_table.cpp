// OdDbDimStyleTable and its records.
#include "platform/db/dim_style_table.h"

#include <cmath>
#include <string>
#include <type_traits>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbDimStyleTable, OdDbSymbolTable, L"OdDbDimStyleTable", 0, 0, 0,
                L"DIMSTYLE_TABLE", OdString())
OD_RX_DEFINE_DB(OdDbDimStyleTableRecord, OdDbSymbolTableRecord, L"OdDbDimStyleTableRecord", 0, 0, 0,
                L"DIMSTYLE", OdString())

namespace {

// Checks of the rows.
constexpr OdDbAnyValue kIsAny;
bool isNumber(double value) { return std::isfinite(value); }
bool isSize(double value) { return std::isfinite(value) && value >= 0.0; }
bool isFactor(double value) { return std::isfinite(value) && value > 0.0; }
bool isDecimals(OdInt16 value) { return value >= 0 && value <= 8; }
bool isPlace(OdInt16 value) { return value >= 0 && value <= 4; }
bool isBits(OdInt16 value) { return value >= 0 && value <= 15; }
bool isSign(OdInt16 value) { return value >= L' ' && value < 0x7F; }

template <class T>
OdString textOf(const T& value) requires std::is_arithmetic_v<T> {
  return OdString(std::to_string(value));
}
template <class T>
OdString textOf(const T&) requires(!std::is_arithmetic_v<T>) {
  return {};
}

}  // namespace

// A getter and a setter for each row.
#define OD_DIM_VAR(Type, name, Name, First, Code, Check)                                           \
  Type OdDbDimStyleTableRecord::name() const { return read(m_##name); }                            \
  void OdDbDimStyleTableRecord::set##Name(const Type& value) {                                     \
    if (!Check(value)) {                                                                           \
      throw OdError(eInvalidInput, OdString(#name " ") + textOf(value) + " of dimension style '" + \
                                       getName() + "'");                                           \
    }                                                                                              \
    assign(m_##name, value);                                                                       \
  }
#include "platform/db/dim_var_rows.inc"
#undef OD_DIM_VAR

OdDbObjectId OdDbDimStyleTableRecord::dimtxsty() const { return read(m_textStyle); }

void OdDbDimStyleTableRecord::setDimtxsty(const OdDbObjectId& textStyle) {
  assign(m_textStyle, textStyle);
}

// Fields: version (uint8), the rows of dim_var_rows.inc by their types, the text style (hard
// pointer, group 340).

template <class Fields, class Self>
void OdDbDimStyleTableRecord::fields(Fields& fields, Self& self) {
  fields.version(1);
#define OD_DIM_VAR(Type, name, Name, First, Code, Check) fields.value(Code, self.m_##name, Check);
#include "platform/db/dim_var_rows.inc"
#undef OD_DIM_VAR
  fields.template pointer<OdDb::kHardPointerRef>(340, self.m_textStyle);
}

OD_DB_DEFINE_FILING(OdDbDimStyleTableRecord, OdDbSymbolTableRecord)
