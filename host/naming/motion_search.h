// The motion that lays one body on another.
#pragma once

#include <span>
#include <vector>

#include "host/naming/body_signature.h"
#include "host/naming/place_grid.h"

namespace vdm_host {

/// A rigid motion or mirror and how many faces of the old body it lays on faces of the new one:
/// same surface, same sort, displaced by less than half of the reach.
struct BodyMotion {
  OdGeMatrix3d matrix;
  OdUInt32 laid = 0;
};

/// The motions that are to be considered, the best first: either "none" alone, or those that lay
/// more faces than none does, as long as they are as good as the best of them. Several when the
/// body looks alike in several positions; "none" stays among them where it lays most faces too,
/// unless the best motion lays all and it does not come close.
[[nodiscard]] std::vector<BodyMotion> findMotions(std::span<const SubentSignature> before,
                                                  std::span<const SubentSignature> now,
                                                  const PlaceGrid& nowGrid,
                                                  const MatchTolerance& tolerance);

}  // namespace vdm_host
