// The motion that lays one body on another.
#pragma once

#include <span>
#include <vector>

#include "host/naming/place_grid.h"
#include "host/naming/subent_signature.h"

namespace vdm_host {

/// A rigid motion or mirror and how many faces of the old body it lays on faces of the new one:
/// on the same surface, with middles that are at most half a reach apart.
struct BodyMotion {
  OdGeMatrix3d matrix;
  OdUInt32 laid = 0;
};

/// The motions that are to be considered, the best first. Laws:
///   1. a motion counts that lays three quarters of the faces or more, and more than none does;
///   2. of those that count, all that lay as many as the best are returned: the body looks alike in
///      several positions;
///   3. of several the one that displaces the body by less than 1 % of its size is returned alone,
///      when the next one displaces it at least ten times as far;
///   4. "none" is among them when it lays half of the faces, unless the best motion lays 95 % and
///      "none" fewer than three quarters, or one displaces the body by less than 1 % of its size;
///   5. without a motion that counts, "none" alone is returned.
[[nodiscard]] std::vector<BodyMotion> findMotions(std::span<const SubentSignature> before,
                                                  std::span<const SubentSignature> now,
                                                  const PlaceGrid& nowGrid,
                                                  const MatchTolerance& tolerance);

}  // namespace vdm_host
