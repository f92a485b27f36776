// OdDbLayerTable and its records.
#include "platform/db/layer_table.h"

#include <string>

#include "platform/base/error.h"

OD_RX_DEFINE_DB(OdDbLayerTable, OdDbSymbolTable, L"OdDbLayerTable", 0, 0, 0, L"LAYER_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbLayerTableRecord, OdDbSymbolTableRecord, L"OdDbLayerTableRecord", 0, 0, 0,
                L"LAYER", OdString())

namespace {

constexpr OdUInt8 kVersion = 1;

bool isLayerLineWeight(OdInt16 weight) {
  return weight == OdDb::kLnWtByLwDefault || (weight >= OdDb::kLnWt000 && weight <= OdDb::kLnWt211);
}

}  // namespace

OdRxClass* OdDbLayerTable::recordClass() const { return OdDbLayerTableRecord::desc(); }

OdCmColor OdDbLayerTableRecord::color() const {
  assertReadEnabled();
  return m_color;
}

void OdDbLayerTableRecord::setColor(const OdCmColor& color) {
  if (color.isByLayer() || color.isByBlock()) {
    throw OdError(eInvalidInput,
                  OdString("colour method " + std::to_string(color.colorMethod()) + " of a layer"));
  }
  if (color == m_color) return;
  assertWriteEnabled();
  m_color = color;
}

bool OdDbLayerTableRecord::flag(OdUInt8 mask) const {
  assertReadEnabled();
  return (m_flags & mask) != 0;
}

void OdDbLayerTableRecord::setFlag(OdUInt8 mask, bool value) {
  const auto flags = static_cast<OdUInt8>(value ? m_flags | mask : m_flags & ~mask);
  if (flags == m_flags) return;
  assertWriteEnabled();
  m_flags = flags;
}

bool OdDbLayerTableRecord::isFrozen() const { return flag(kFrozen); }
void OdDbLayerTableRecord::setIsFrozen(bool frozen) { setFlag(kFrozen, frozen); }
bool OdDbLayerTableRecord::isOff() const { return flag(kOff); }
void OdDbLayerTableRecord::setIsOff(bool off) { setFlag(kOff, off); }
bool OdDbLayerTableRecord::isLocked() const { return flag(kLocked); }
void OdDbLayerTableRecord::setIsLocked(bool locked) { setFlag(kLocked, locked); }
bool OdDbLayerTableRecord::isHidden() const { return flag(kHidden); }
void OdDbLayerTableRecord::setIsHidden(bool hidden) { setFlag(kHidden, hidden); }
bool OdDbLayerTableRecord::isPlottable() const { return !flag(kNotPlotted); }
void OdDbLayerTableRecord::setIsPlottable(bool plottable) { setFlag(kNotPlotted, !plottable); }

OdDb::LineWeight OdDbLayerTableRecord::lineWeight() const {
  assertReadEnabled();
  return m_lineWeight;
}

void OdDbLayerTableRecord::setLineWeight(OdDb::LineWeight weight) {
  if (!isLayerLineWeight(weight)) {
    throw OdError(eInvalidInput, OdString("pen " + std::to_string(weight) + " of a layer"));
  }
  if (weight == m_lineWeight) return;
  assertWriteEnabled();
  m_lineWeight = weight;
}

OdDbObjectId OdDbLayerTableRecord::linetypeObjectId() const {
  assertReadEnabled();
  return m_linetypeId;
}

void OdDbLayerTableRecord::setLinetypeObjectId(const OdDbObjectId& id) {
  if (id == m_linetypeId) return;
  assertWriteEnabled();
  m_linetypeId = id;
}

// Fields:
//
//   version       uint8          1
//   flags         uint8          bit 0 frozen, 1 off, 2 locked, 3 hidden, 4 not plotted
//   colour        4 x uint8      see OdCmColor; neither by layer nor by block
//   line type     hard pointer   null: continuous
//   pen           int16          hundredths of a millimetre, -3 default

void OdDbLayerTableRecord::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbSymbolTableRecord::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  filer->wrUInt8(m_flags);
  m_color.dwgOut(filer);
  filer->wrHardPointerId(m_linetypeId);
  filer->wrInt16(m_lineWeight);
}

OdResult OdDbLayerTableRecord::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbSymbolTableRecord::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  m_flags = filer->rdUInt8();
  const OdResult colorResult = m_color.dwgIn(filer);
  m_linetypeId = filer->rdHardPointerId();
  const OdInt16 weight = filer->rdInt16();
  if (colorResult != eOk || (m_flags & ~kAllFlags) != 0 || !isLayerLineWeight(weight)) {
    return eCorruptData;
  }
  m_lineWeight = static_cast<OdDb::LineWeight>(weight);
  return eOk;
}
