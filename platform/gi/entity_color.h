// OdCmEntityColor: colour of an entity, a layer or what is being drawn.
#pragma once

#include "platform/base/result.h"
#include "platform/base/types.h"

class OdDbDwgFiler;

/// A colour as a rule or a value, in four bytes: by layer, by block, an index of the colour table
/// (1 to 255), red-green-blue (0 to 255 each), or none. A new colour is by layer.
class OdCmEntityColor {
 public:
  /// Stored numbers.
  enum ColorMethod : OdUInt8 {
    kByLayer = 0xC0,
    kByBlock = 0xC1,
    kByColor = 0xC2,
    kByACI = 0xC3,
    kNone = 0xC8,
  };
  /// Indices with a meaning of their own.
  static constexpr OdUInt16 kIndexByBlock = 0;
  static constexpr OdUInt16 kIndexByLayer = 256;

  constexpr OdCmEntityColor() = default;
  explicit OdCmEntityColor(ColorMethod method) { setColorMethod(method); }
  static OdCmEntityColor fromRGB(OdUInt8 red, OdUInt8 green, OdUInt8 blue) {
    OdCmEntityColor color;
    color.setRGB(red, green, blue);
    return color;
  }
  static OdCmEntityColor fromIndex(OdUInt16 index) {
    OdCmEntityColor color;
    color.setColorIndex(index);
    return color;
  }

  [[nodiscard]] ColorMethod colorMethod() const { return m_method; }
  /// By colour gives black, by index the index 7.
  void setColorMethod(ColorMethod method);
  [[nodiscard]] bool isByLayer() const { return m_method == kByLayer; }
  [[nodiscard]] bool isByBlock() const { return m_method == kByBlock; }
  [[nodiscard]] bool isByColor() const { return m_method == kByColor; }
  [[nodiscard]] bool isByACI() const { return m_method == kByACI; }
  [[nodiscard]] bool isNone() const { return m_method == kNone; }

  void setRGB(OdUInt8 red, OdUInt8 green, OdUInt8 blue);
  /// Components of a colour by value; 0 for every other method.
  [[nodiscard]] OdUInt8 red() const { return isByColor() ? m_values[0] : OdUInt8{0}; }
  [[nodiscard]] OdUInt8 green() const { return isByColor() ? m_values[1] : OdUInt8{0}; }
  [[nodiscard]] OdUInt8 blue() const { return isByColor() ? m_values[2] : OdUInt8{0}; }

  /// 1 to 255 for a colour by index, 256 by layer, 0 by block; 0 otherwise.
  [[nodiscard]] OdUInt16 colorIndex() const;
  /// 0 is by block, 256 by layer; above that raises eInvalidInput.
  void setColorIndex(OdUInt16 index);

  /// The colour by value: an index as the colour table shows it, by value as it is. By layer, by
  /// block and none, which a display settles first, count as index 7.
  [[nodiscard]] OdCmEntityColor toRGB() const;

  friend bool operator==(const OdCmEntityColor&, const OdCmEntityColor&) = default;

  /// Files method (uint8) and three values (uint8 each).
  void dwgOut(OdDbDwgFiler* filer) const;
  /// eCorruptData for a method that does not exist.
  OdResult dwgIn(OdDbDwgFiler* filer);
  /// The same four bytes in one number, the method in the highest one.
  [[nodiscard]] OdInt32 packed() const;
  /// eCorruptData, and nothing changes, for a method that does not exist.
  OdResult setPacked(OdInt32 number);

 private:
  ColorMethod m_method = kByLayer;
  OdUInt8 m_values[3] = {0, 0, 0};  // red, green, blue; or the index in the first
};
