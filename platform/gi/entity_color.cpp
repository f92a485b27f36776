// OdCmEntityColor: methods, values, filing.
#include "platform/gi/entity_color.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

#include "platform/base/error.h"
#include "platform/filer/dwg_filer.h"

namespace {

constexpr OdUInt8 kWhiteIndex = 7;

bool isMethod(OdUInt8 number) {
  switch (number) {
    case OdCmEntityColor::kByLayer:
    case OdCmEntityColor::kByBlock:
    case OdCmEntityColor::kByColor:
    case OdCmEntityColor::kByACI:
    case OdCmEntityColor::kNone:
      return true;
    default:
      return false;
  }
}

}  // namespace

void OdCmEntityColor::setColorMethod(ColorMethod method) {
  if (!isMethod(method)) {
    throw OdError(eInvalidInput, OdString("colour method " + std::to_string(method)));
  }
  m_method = method;
  m_values[0] = method == kByACI ? kWhiteIndex : OdUInt8{0};
  m_values[1] = m_values[2] = 0;
}

void OdCmEntityColor::setRGB(OdUInt8 red, OdUInt8 green, OdUInt8 blue) {
  m_method = kByColor;
  m_values[0] = red;
  m_values[1] = green;
  m_values[2] = blue;
}

OdUInt16 OdCmEntityColor::colorIndex() const {
  if (isByACI()) return m_values[0];
  return isByLayer() ? kIndexByLayer : OdUInt16{0};
}

void OdCmEntityColor::setColorIndex(OdUInt16 index) {
  if (index > kIndexByLayer) {
    throw OdError(eInvalidInput, OdString("colour index " + std::to_string(index) +
                                          ", the greatest is " + std::to_string(kIndexByLayer)));
  }
  if (index == kIndexByLayer) return setColorMethod(kByLayer);
  if (index == kIndexByBlock) return setColorMethod(kByBlock);
  setColorMethod(kByACI);
  m_values[0] = static_cast<OdUInt8>(index);
}

// The table: 1 to 9 are named colours and two greys, 250 to 255 greys. 10 to 249 go round the hues
// in steps of 15 degrees; in each ten, pairs of falling brightness, the odd one half as saturated.
OdCmEntityColor OdCmEntityColor::toRGB() const {
  constexpr OdUInt8 kNamed[][3] = {{255, 0, 0},     {255, 255, 0},   {0, 255, 0},
                                   {0, 255, 255},   {0, 0, 255},     {255, 0, 255},
                                   {255, 255, 255}, {128, 128, 128}, {192, 192, 192}};
  constexpr OdUInt8 kGreys[] = {51, 80, 105, 130, 190, 255};
  constexpr double kBrightness[] = {1.0, 0.65, 0.5, 0.3, 0.15};
  if (isByColor()) return *this;
  const unsigned index = isByACI() ? m_values[0] : unsigned{kWhiteIndex};
  if (index <= std::size(kNamed)) {
    const auto& named = kNamed[index - 1];
    return fromRGB(named[0], named[1], named[2]);
  }
  if (index >= 250) return fromRGB(kGreys[index - 250], kGreys[index - 250], kGreys[index - 250]);
  const double hue = (index / 10 - 1) / 4.0;  // in sixths of the circle
  const double high = kBrightness[index % 10 / 2];
  const double low = index % 2 == 0 ? 0.0 : high / 2;
  const auto component = [&](double phase) {
    const double away = std::fabs(std::fmod(hue + phase, 6.0) - 3.0);  // 3 at the component's hue
    const double share = std::clamp(away - 1.0, 0.0, 1.0);
    return static_cast<OdUInt8>(std::lround(255.0 * (low + (high - low) * share)));
  };
  return fromRGB(component(0.0), component(4.0), component(2.0));
}

void OdCmEntityColor::dwgOut(OdDbDwgFiler* filer) const {
  filer->wrUInt8(m_method);
  for (const OdUInt8 value : m_values) filer->wrUInt8(value);
}

OdResult OdCmEntityColor::dwgIn(OdDbDwgFiler* filer) {
  const OdUInt8 method = filer->rdUInt8();
  OdUInt8 values[3];
  for (OdUInt8& value : values) value = filer->rdUInt8();
  if (!isMethod(method)) return eCorruptData;
  setColorMethod(static_cast<ColorMethod>(method));
  for (int i = 0; i < 3; ++i) m_values[i] = values[i];
  return eOk;
}

OdInt32 OdCmEntityColor::packed() const {
  const OdUInt32 values = OdUInt32{m_values[0]} << 16 | OdUInt32{m_values[1]} << 8 | m_values[2];
  return static_cast<OdInt32>(OdUInt32{m_method} << 24 | values);
}

OdResult OdCmEntityColor::setPacked(OdInt32 number) {
  const auto bytes = static_cast<OdUInt32>(number);
  const auto method = static_cast<OdUInt8>(bytes >> 24);
  if (!isMethod(method)) return eCorruptData;
  setColorMethod(static_cast<ColorMethod>(method));
  for (unsigned i = 0; i < 3; ++i) m_values[i] = static_cast<OdUInt8>(bytes >> (16 - 8 * i));
  return eOk;
}
