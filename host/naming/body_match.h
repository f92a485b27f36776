// Which subentities of a body are those of another one, by their looks.
#pragma once

#include <span>
#include <vector>

#include "host/naming/body_signature.h"
#include "host/naming/reference_grade.h"

namespace vdm_host {

/// What one old subentity is now. Several images with the grade split only; none with ambiguous and
/// lost.
struct SubentMatch {
  ReferenceGrade grade = ReferenceGrade::kLost;
  std::vector<OdUInt32> images;
};

/// Matches of all subentities of an old body, by index - 1.
struct BodyMatch {
  std::vector<SubentMatch> faces;
  std::vector<SubentMatch> edges;
  std::vector<SubentMatch> vertices;
  OdGeMatrix3d motion;  ///< where the body as a whole went

  [[nodiscard]] const SubentMatch& of(OdModelerSubent subent) const;
};

/// Without history, by signature. Laws:
///   1. nothing is taken that is not clearly best in both directions: the old subentity's best
///      candidate, whose best old subentity it is;
///   2. first the motion (none, a displacement, a turn, a mirror) that lays the old body on the new
///      one is looked for; when several do so equally well, only what they agree on is matched, and
///      the rest is ambiguous. No motion at all wins over others that fit as well;
///   3. identical geometry is matched first; what was displaced or resized a little (by less than
///   its
///      reach, and less than half as far as the next candidate is) next, and it must meet the same
///      neighbours; then edges and vertices by the faces that meet there;
///   4. the rest is lost; ambiguous when several look-alikes are near, or it touches one such face.
[[nodiscard]] BodyMatch matchBySignature(const OdModelerBody& before, const OdModelerBody& now);

/// The same for a few signatures alone, of which no body is there any more. Laws 1 and 4, with
/// identical geometry or a displacement within law 3; no motion is looked for.
[[nodiscard]] std::vector<SubentMatch> matchSignatures(std::span<const SubentSignature> wanted,
                                                       const OdModelerBody& now);

}  // namespace vdm_host
