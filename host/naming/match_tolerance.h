// Lengths and angles within which geometry counts as the same.
#pragma once

#include "platform/ge/point3d.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// From the body: the modeller's confusion distance, or the accuracy of doubles at the body's
/// distance from the origin, whichever is more.
struct MatchTolerance {
  double length = 1e-6;     ///< drawing units
  double direction = 1e-7;  ///< sine of an angle between unit vectors
  double size = 300.0;      ///< diagonal of the body's box, drawing units

  [[nodiscard]] static MatchTolerance of(const OdModelerBody& body);
  /// Around two bodies: the wider of each.
  [[nodiscard]] static MatchTolerance of(const OdModelerBody& a, const OdModelerBody& b);
  /// The length alone, at this distance from the origin.
  [[nodiscard]] static double lengthAt(double distance);
  /// What areas, lengths and centroids of this size may differ by.
  [[nodiscard]] double ofMeasure(double size) const;
};

}  // namespace vdm_host
