// OdDbLinetypeTable and its records.
#include "platform/db/linetype_table.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/base/error.h"

OD_RX_DEFINE_DB(OdDbLinetypeTable, OdDbSymbolTable, L"OdDbLinetypeTable", 0, 0, 0, L"LTYPE_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbLinetypeTableRecord, OdDbSymbolTableRecord, L"OdDbLinetypeTableRecord", 0, 0, 0,
                L"LTYPE", OdString())

namespace {
constexpr OdUInt8 kVersion = 1;
}

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
//   version       uint8
//   description   string
//   dashes        int32 count (at most 12), then doubles: dash > 0, gap < 0, dot 0; drawing units

void OdDbLinetypeTableRecord::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbSymbolTableRecord::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  filer->wrString(m_description);
  filer->wrInt32(static_cast<OdInt32>(m_dashes.size()));
  for (const double dash : m_dashes) filer->wrDouble(dash);
}

OdResult OdDbLinetypeTableRecord::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbSymbolTableRecord::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  m_description = filer->rdString();
  const OdUInt32 count = filer->rdCount(sizeof(double));
  if (count > kMaxDashes) return eCorruptData;
  OdDbDashArray dashes;
  for (OdUInt32 i = 0; i < count; ++i) {
    dashes.append(filer->rdDouble());
    if (!std::isfinite(dashes.last())) return eCorruptData;
  }
  m_dashes = dashes;
  return eOk;
}
