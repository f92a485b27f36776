// The surfaces that a construction puts into a part, by name: what a face of the part truly is.
#pragma once

#include <string>
#include <vector>

#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"

namespace naming_bench {

/// A surface with a name and the region of space in which the construction uses it. It is known
/// from the dimensions of the part alone; no body is asked.
struct Carrier {
  std::string name;
  OdModelerSurfaceKind kind = OdModelerSurfaceKind::kPlane;
  OdGePoint3d origin;        ///< point of a plane, of an axis; centre of a torus
  OdGeVector3d axis;         ///< outward normal of a plane; axis, whose sign does not count
  double radius = 0.0;       ///< drawing units
  double minorRadius = 0.0;  ///< torus
  bool inward = false;       ///< the outward normal points at the axis
  int feature = -1;          ///< position among the features of the part; -1 for its base

  // The region, a box in a frame of its own.
  OdGeMatrix3d toLocal;
  OdGePoint3d low;
  OdGePoint3d high;

  /// Takes part in a rigid or mirroring motion.
  void moveBy(const OdGeMatrix3d& motion);
};

/// How far surface parameters may be apart that the construction makes equal, in drawing units: ten
/// times the modeller's confusion of 1e-7, for what its operations round.
inline constexpr double kSameSurface = 1e-6;

/// Whether the face lies on the carrier, within its region.
[[nodiscard]] bool liesOn(const OdModelerFace& face, const Carrier& carrier);

/// The first carrier on which the face lies; -1 when there is none.
[[nodiscard]] int carrierOf(const OdModelerFace& face, const std::vector<Carrier>& carriers);

/// Whether two carriers are one surface in one region.
[[nodiscard]] bool sameCarrier(const Carrier& a, const Carrier& b);

}  // namespace naming_bench
