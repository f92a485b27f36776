// OdDbLayerTable and its records.
#include "platform/db/layer_table.h"

#include <string>

#include "platform/base/error.h"
#include "platform/db/field_list.h"

OD_RX_DEFINE_DB(OdDbLayerTable, OdDbSymbolTable, L"OdDbLayerTable", 0, 0, 0, L"LAYER_TABLE",
                OdString())
OD_RX_DEFINE_DB(OdDbLayerTableRecord, OdDbSymbolTableRecord, L"OdDbLayerTableRecord", 0, 0, 0,
                L"LAYER", OdString())

namespace {

bool isLayerLineWeight(OdInt16 weight) {
  return weight == OdDb::kLnWtByLwDefault || (weight >= OdDb::kLnWt000 && weight <= OdDb::kLnWt211);
}

}  // namespace

OdCmColor OdDbLayerTableRecord::color() const { return read(m_color); }

void OdDbLayerTableRecord::setColor(const OdCmColor& color) {
  if (color.isByLayer() || color.isByBlock()) {
    throw OdError(eInvalidInput,
                  OdString("colour method " + std::to_string(color.colorMethod()) + " of a layer"));
  }
  assign(m_color, color);
}

bool OdDbLayerTableRecord::flag(OdUInt8 mask) const {
  assertReadEnabled();
  return (m_flags & mask) != 0;
}

void OdDbLayerTableRecord::setFlag(OdUInt8 mask, bool value) {
  const auto flags = static_cast<OdUInt8>(value ? m_flags | mask : m_flags & ~mask);
  assign(m_flags, flags);
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

OdDb::LineWeight OdDbLayerTableRecord::lineWeight() const { return read(m_lineWeight); }

void OdDbLayerTableRecord::setLineWeight(OdDb::LineWeight weight) {
  if (!isLayerLineWeight(weight)) {
    throw OdError(eInvalidInput, OdString("pen " + std::to_string(weight) + " of a layer"));
  }
  assign(m_lineWeight, weight);
}

OdDbObjectId OdDbLayerTableRecord::linetypeObjectId() const { return read(m_linetypeId); }

void OdDbLayerTableRecord::setLinetypeObjectId(const OdDbObjectId& id) { assign(m_linetypeId, id); }

// Fields:
//
//   field         binary         groups
//   version       uint8                  1
//   flags         uint8          280     bit 0 frozen, 1 off, 2 locked, 3 hidden, 4 not plotted
//   colour        4 x uint8      420     see OdCmColor; neither by layer nor by block
//   line type     hard pointer   341     null: continuous
//   pen           int16          370     hundredths of a millimetre, -3 default

template <class Fields, class Self>
void OdDbLayerTableRecord::fields(Fields& fields, Self& self) {
  fields.version(1);
  fields.value(280, self.m_flags, [](OdUInt8 flags) { return (flags & ~kAllFlags) == 0; });
  fields.value(420, self.m_color);
  fields.template pointer<OdDb::kHardPointerRef>(341, self.m_linetypeId);
  fields.template number<OdInt16>(370, self.m_lineWeight, isLayerLineWeight);
}

OD_DB_DEFINE_FILING(OdDbLayerTableRecord, OdDbSymbolTableRecord)
