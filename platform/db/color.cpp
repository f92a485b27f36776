// OdCmColor: methods, values, filing.
#include "platform/db/color.h"

#include <string>

#include "platform/base/error.h"
#include "platform/filer/dwg_filer.h"

namespace {

constexpr OdUInt8 kWhiteIndex = 7;

bool isMethod(OdUInt8 number) {
  switch (number) {
    case OdCmColor::kByLayer:
    case OdCmColor::kByBlock:
    case OdCmColor::kByColor:
    case OdCmColor::kByACI:
    case OdCmColor::kNone:
      return true;
    default:
      return false;
  }
}

}  // namespace

void OdCmColor::setColorMethod(ColorMethod method) {
  if (!isMethod(method)) {
    throw OdError(eInvalidInput, OdString("colour method " + std::to_string(method)));
  }
  m_method = method;
  m_values[0] = method == kByACI ? kWhiteIndex : OdUInt8{0};
  m_values[1] = m_values[2] = 0;
}

void OdCmColor::setRGB(OdUInt8 red, OdUInt8 green, OdUInt8 blue) {
  m_method = kByColor;
  m_values[0] = red;
  m_values[1] = green;
  m_values[2] = blue;
}

OdUInt16 OdCmColor::colorIndex() const {
  if (isByACI()) return m_values[0];
  return isByLayer() ? kIndexByLayer : OdUInt16{0};
}

void OdCmColor::setColorIndex(OdUInt16 index) {
  if (index > kIndexByLayer) {
    throw OdError(eInvalidInput, OdString("colour index " + std::to_string(index) +
                                          ", the greatest is " + std::to_string(kIndexByLayer)));
  }
  if (index == kIndexByLayer) return setColorMethod(kByLayer);
  if (index == kIndexByBlock) return setColorMethod(kByBlock);
  setColorMethod(kByACI);
  m_values[0] = static_cast<OdUInt8>(index);
}

void OdCmColor::dwgOut(OdDbDwgFiler* filer) const {
  filer->wrUInt8(m_method);
  for (const OdUInt8 value : m_values) filer->wrUInt8(value);
}

OdResult OdCmColor::dwgIn(OdDbDwgFiler* filer) {
  const OdUInt8 method = filer->rdUInt8();
  OdUInt8 values[3];
  for (OdUInt8& value : values) value = filer->rdUInt8();
  if (!isMethod(method)) return eCorruptData;
  setColorMethod(static_cast<ColorMethod>(method));
  for (int i = 0; i < 3; ++i) m_values[i] = values[i];
  return eOk;
}
