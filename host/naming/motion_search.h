// The motions that may lay one body on another.
#pragma once

#include <span>
#include <vector>

#include "host/naming/body_motion.h"
#include "host/naming/place_grid.h"
#include "host/naming/subent_signature.h"

namespace vdm_host {

/// The motions that are worth a closer look. Laws:
///   1. "none" comes first, and alone when it lays every face on one of the same measure;
///   2. the others lay half of the faces or more, and nearly as many as the best of them; the best
///      first;
///   3. a scaling is looked for where no rigid motion lays half of the faces.
[[nodiscard]] std::vector<BodyMotion> findMotions(std::span<const SubentSignature> before,
                                                  std::span<const SubentSignature> now,
                                                  const PlaceGrid& nowGrid,
                                                  const MatchTolerance& tolerance);

}  // namespace vdm_host
