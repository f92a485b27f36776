// Which subentities of a body are those of another one, by their looks.
#pragma once

#include <span>
#include <vector>

#include "host/naming/subent_match.h"
#include "host/naming/subent_signature.h"
#include "platform/modeler/body.h"

namespace vdm_host {

/// Matches of all subentities of an old body, by index - 1.
struct BodyMatch {
  std::vector<SubentMatch> faces;
  std::vector<SubentMatch> edges;
  std::vector<SubentMatch> vertices;
  OdGeMatrix3d motion;  ///< how the body moved as a whole

  [[nodiscard]] const SubentMatch& of(OdModelerSubent subent) const;
};

/// Without history, by signature. Laws:
///   1. nothing is taken that is not clearly best in both directions: the old subentity's best
///      candidate, whose best old subentity it is, and the next candidate on either side is at
///      least twice as bad;
///   2. the motion (none, a displacement, a turn, a mirror) that lays the old body on the new one
///      is looked for first. When several do so equally well, only what they agree on is matched,
///      and the rest is ambiguous. No motion at all wins over others that fit as well;
///   3. identical geometry is matched first. Next what was displaced by less than its reach or
///      resized a little; it must meet the same neighbours. Then edges and vertices by the faces
///      that meet there;
///   4. the rest is lost; ambiguous when several look-alikes are near, or it touches one such face.
[[nodiscard]] BodyMatch matchBySignature(const OdModelerBody& before, const OdModelerBody& now);

/// The same for a few signatures of a body that does not exist any more. Laws 1, 3 (identical, then
/// displaced with the same neighbours) and 4; no motion is looked for.
[[nodiscard]] std::vector<SubentMatch> matchSignatures(std::span<const SubentSignature> wanted,
                                                       const OdModelerBody& now);

}  // namespace vdm_host
