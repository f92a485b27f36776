// Faces, edges and vertices of a body by number, and their selection markers.
#pragma once

#include <compare>

#include "platform/base/types.h"

/// Numbers equal those of OdDb::SubentType; stored.
enum class OdModelerSubentType : OdInt32 { kNull = 0, kFace = 1, kEdge = 2, kVertex = 3 };

/// One subentity of a body. Indices start at 1 and follow the body's stable order.
struct OdModelerSubent {
  OdModelerSubentType type = OdModelerSubentType::kNull;
  OdUInt32 index = 0;

  friend auto operator<=>(const OdModelerSubent&, const OdModelerSubent&) = default;
};

/// Selection markers: face i has 4 i + 1, edge i has 4 i + 2, vertex i has 4 i + 3. Markers 1 to 4
/// and multiples of 4 are no markers.
constexpr OdInt64 odSubentToMarker(OdModelerSubent subent) {
  return subent.index == 0 ? 0 : OdInt64{4} * subent.index + static_cast<OdInt64>(subent.type);
}

/// The subentity of a marker, whether or not a body has so many; a null one for no marker.
constexpr OdModelerSubent odSubentFromMarker(OdInt64 marker) {
  constexpr OdInt64 kLastMarker = OdInt64{4} * 0xFFFFFFFFLL + 3;
  if (marker < 5 || marker > kLastMarker || marker % 4 == 0) return {};
  return {static_cast<OdModelerSubentType>(marker % 4), static_cast<OdUInt32>(marker / 4)};
}
