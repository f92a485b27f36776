// Which subentities of a body are those of another one, by their looks.
#pragma once

#include <span>
#include <vector>

#include "host/naming/motion_search.h"
#include "host/naming/subent_match.h"
#include "host/naming/subent_signature.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// Matches of all subentities of an old body, by index - 1.
struct BodyMatch {
  std::vector<SubentMatch> faces;
  std::vector<SubentMatch> edges;
  std::vector<SubentMatch> vertices;
  BodyMotion motion;         ///< how the body moved as a whole
  std::size_t readings = 1;  ///< ways of reading the change that were left

  [[nodiscard]] const SubentMatch& of(OdModelerSubent subent) const;
};

/// Without history, by signature. Laws:
///   1. the faces are read under each motion that the body as a whole may have made, and the
///      readings are weighed (reading.h). Where several are left, only what they agree on is
///      matched, and the rest is ambiguous;
///   2. an edge or vertex is where the images of all its faces meet. Alone there before, it is all
///      that is there now on its curve: split, where that is several. Among several it is the
///      identical one, a part of it, or the clearly nearest;
///   3. at a face that is not known it must be identical;
///   4. the rest is lost; ambiguous when several look-alikes are near, or it touches one such face.
[[nodiscard]] BodyMatch matchBySignature(const OdModelerBody& before, const OdModelerBody& now);

/// The same for a few signatures of a body that does not exist any more. Laws 1, 3 (identical, then
/// displaced with the same neighbours) and 4; no motion is looked for.
[[nodiscard]] std::vector<SubentMatch> matchSignatures(std::span<const SubentSignature> wanted,
                                                       const OdModelerBody& now);

}  // namespace vdm_host
