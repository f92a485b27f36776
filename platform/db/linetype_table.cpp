// OdDbLinetypeTable and its records.
#include "platform/db/linetype_table.h"

#include <cmath>
#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbLinetypeTable, OdDbSymbolTable, L"OdDbLinetypeTable", 0, 0, 0, L"LTYPE_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbLinetypeTableRecord, OdDbSymbolTableRecord, L"OdDbLinetypeTableRecord", 0, 0, 0,
                L"LTYPE", OdString())

OdRxClass* OdDbLinetypeTable::recordClass() const { return OdDbLinetypeTableRecord::desc(); }

OdString OdDbLinetypeTableRecord::comments() const {
  assertReadEnabled();
  return m_description;
}

void OdDbLinetypeTableRecord::setComments(const OdString& description) {
  if (description == m_description) return;
  assertWriteEnabled();
  m_description = description;
}

OdDbDashArray OdDbLinetypeTableRecord::dashes() const {
  assertReadEnabled();
  return m_dashes;
}

void OdDbLinetypeTableRecord::setDashes(const OdDbDashArray& dashes) {
  if (dashes.size() > kMaxDashes) {
    throw OdError(eLimitExceeded, OdString(std::to_string(dashes.size()) + " dashes, at most " +
                                           std::to_string(kMaxDashes)));
  }
  for (const double dash : dashes) {
    if (!std::isfinite(dash)) {
      throw OdError(eInvalidInput, OdString("dash length " + std::to_string(dash)));
    }
  }
  if (dashes == m_dashes) return;
  assertWriteEnabled();
  m_dashes = dashes;
}

double OdDbLinetypeTableRecord::patternLength() const {
  assertReadEnabled();
  double length = 0.0;
  for (const double dash : m_dashes) length += std::abs(dash);
  return length;
}

// Fields:
//
//   field         binary                    groups
//   version       uint8                             1
//   description   string                    3
//   dashes        int32 count, doubles      49      at most 12: dash > 0, gap < 0, dot 0; drawing
//                                                   units

template <class Fields, class Self>
void OdDbLinetypeTableRecord::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(3, self.m_description);
  fields.list(49, self.m_dashes, kMaxDashes, [](double dash) { return std::isfinite(dash); });
}

void OdDbLinetypeTableRecord::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbSymbolTableRecord::dwgOutFields(filer);
  OdDbFieldFiling::dwgOut(filer, *this);
}

OdResult OdDbLinetypeTableRecord::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbSymbolTableRecord::dwgInFields(filer);
  return result == eOk ? OdDbFieldFiling::dwgIn(filer, *this) : result;
}

void OdDbLinetypeTableRecord::dxfOutFields(OdDbDxfFiler* filer) const {
  OdDbSymbolTableRecord::dxfOutFields(filer);
  OdDbFieldFiling::dxfOut(filer, *this);
}

OdResult OdDbLinetypeTableRecord::dxfInFields(OdDbDxfFiler* filer) {
  const OdResult result = OdDbSymbolTableRecord::dxfInFields(filer);
  return result == eOk ? OdDbFieldFiling::dxfIn(filer, *this) : result;
}
