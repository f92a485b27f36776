// OdGiEdgeStyle: how the edges of solids are shown.
#pragma once

#include "platform/gi/entity_color.h"

/// The part of a visual style that is about edges. A plain value.
struct OdGiEdgeStyle {
  /// Which edges show. Numbers are stored.
  enum EdgeModel : OdUInt8 { kNoEdges = 0, kIsolines = 1, kFacetEdges = 2 };

  /// Line types that a style has by number. Numbers are stored; 0 hides the edges.
  enum LineType : OdUInt8 {
    kOff = 0,
    kSolid = 1,
    kDashed = 2,
    kDotted = 3,
    kShortDash = 4,
    kMediumDash = 5,
    kLongDash = 6,
    kDoubleShortDash = 7,
    kDoubleMediumDash = 8,
    kDoubleLongDash = 9,
    kMediumLongDash = 10,
    kSparseDot = 11,
  };

  EdgeModel edgeModel = kFacetEdges;
  OdCmEntityColor edgeColor = OdCmEntityColor::fromIndex(7);  ///< edges in sight
  bool showsObscured = false;
  OdCmEntityColor obscuredColor{OdCmEntityColor::kNone};  ///< hidden edges; none: the edge colour
  LineType obscuredLinetype = kSolid;
  bool showsIntersections = false;
  OdCmEntityColor intersectionColor = OdCmEntityColor::fromIndex(7);
  LineType intersectionLinetype = kSolid;
  double creaseAngle = 1.0;  ///< degrees, 0 to 180: flatter edges between facets do not show

  friend bool operator==(const OdGiEdgeStyle&, const OdGiEdgeStyle&) = default;
};
