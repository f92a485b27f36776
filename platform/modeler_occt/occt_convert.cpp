// Conversions between the runtime's geometry and text values and those of Open CASCADE.
#include "platform/modeler_occt/occt_convert.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace od_occt {

OdGeMatrix3d toMatrix(const gp_Trsf& transformation) {
  OdGeMatrix3d m;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 4; ++c) {
      m.entry[r][c] = transformation.Value(r + 1, c + 1);
    }
  }
  return m;
}

gp_Trsf toTrsf(const OdGeMatrix3d& matrix) {
  const auto& e = matrix.entry;
  gp_Trsf t;
  t.SetValues(e[0][0], e[0][1], e[0][2], e[0][3], e[1][0], e[1][1], e[1][2], e[1][3], e[2][0],
              e[2][1], e[2][2], e[2][3]);
  return t;
}

OdModelerColor toColor(const Quantity_Color& color) {
  double rgb[3] = {};
  color.Values(rgb[0], rgb[1], rgb[2], Quantity_TOC_sRGB);
  const auto byte = [](double v) {
    return static_cast<OdUInt8>(std::lround(std::clamp(v, 0.0, 1.0) * 255.0));
  };
  return {byte(rgb[0]), byte(rgb[1]), byte(rgb[2])};
}

Quantity_Color toOcct(const OdModelerColor& color) {
  return {color.red / 255.0, color.green / 255.0, color.blue / 255.0, Quantity_TOC_sRGB};
}

OdString toString(const TCollection_ExtendedString& text) {
  std::string utf8(static_cast<std::size_t>(text.LengthOfCString()) + 1, '\0');
  Standard_PCharacter target = utf8.data();
  utf8.resize(static_cast<std::size_t>(text.ToUTF8CString(target)));
  return OdString::fromUtf8(utf8.data(), utf8.size());
}

TCollection_ExtendedString toOcct(const OdString& text) {
  return TCollection_ExtendedString(static_cast<const char*>(text), /*isMultiByte=*/true);
}

}  // namespace od_occt
