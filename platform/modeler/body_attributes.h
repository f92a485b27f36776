// What a body carries besides its geometry: a name and colours.
#pragma once

#include <map>
#include <optional>

#include "platform/base/string.h"
#include "platform/base/types.h"

/// A colour as eight-bit sRGB components.
struct OdModelerColor {
  OdUInt8 red = 0;
  OdUInt8 green = 0;
  OdUInt8 blue = 0;

  friend bool operator==(const OdModelerColor&, const OdModelerColor&) = default;
};

/// Filed with the body. A face without an entry of its own has the colour of the body; no colour at
/// all means the colour of the entity that holds the body.
struct OdModelerBodyAttributes {
  OdString name;
  std::optional<OdModelerColor> color;
  std::map<OdUInt32, OdModelerColor> faceColors;  ///< by face index
  std::map<OdUInt32, OdString> faceNames;         ///< by face index

  friend bool operator==(const OdModelerBodyAttributes&, const OdModelerBodyAttributes&) = default;
};
