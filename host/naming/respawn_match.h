// Openings that were cut again: which new faces, edges and vertices are the old ones.
#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "host/naming/lineage_match.h"
#include "host/naming/reference_record.h"
#include "host/naming/reference_update.h"

namespace vdm_host {

/// What came of a reference that touches an opening.
struct RespawnMatch {
  SubentMatch match;
  LineageBirth birth;
  bool closed = false;  ///< the opening was closed and not cut again
};

/// Laws:
///   1. an old face of an opening is what the same face of the tool left in the new body; of
///      several such faces the one that lies as the old one does after the tool's motion, else all;
///      a face in which several openings had met is all of theirs;
///   2. an edge or vertex that touches such a face is the one where the images of all its old faces
///      meet and no others; of several the one that lies as the old one did after the motion, or
///      lies nearest by far; else it is ambiguous. Where they meet nowhere, because the opening
///      went to other faces, it is the one at the opening that lies exactly as the old one did;
///   3. what touches a face that is not there any more is lost until the opening comes back; an
///      edge or vertex comes back where it lies exactly as it did.
///   4. what a tool's face left is never another face, though it lie in that one's old place.
class RespawnMatcher {
 public:
  /// The rows are those of one solid. All arguments outlive this; `lineage` tells the faces that
  /// are not of openings.
  RespawnMatcher(std::span<const FaceRespawn> rows, const OdModelerBody& before,
                 const OdModelerBody& now, LineageMatcher& lineage);

  [[nodiscard]] bool empty() const { return m_rows.empty(); }
  /// Whether match() has something to tell about it.
  [[nodiscard]] bool touches(OdModelerSubent subent) const { return rowAt(subent) != nullptr; }
  /// None when the subentity touches no opening of the rows.
  [[nodiscard]] std::optional<RespawnMatch> match(OdModelerSubent subent);
  /// A reference that was lost with its opening. `wanted` is its signature where the solid is now;
  /// faces need none. None when no row is of its birth.
  [[nodiscard]] std::optional<RespawnMatch> comeBack(const LineageBirth& birth,
                                                     const SubentSignature& wanted);

 private:
  const FaceRespawn* rowOf(OdUInt32 oldFace) const;
  const FaceRespawn* rowAt(OdModelerSubent subent) const;
  const MatchTolerance& tolerance() const;
  [[nodiscard]] SubentMatch stayed(OdModelerSubent subent) const;
  [[nodiscard]] SubentMatch matchFace(const FaceRespawn& row, const SubentSignature& wanted) const;
  void addOthers(const FaceRespawn& row, OdModelerSubent face, SubentMatch& match);
  [[nodiscard]] bool isOpening(OdUInt32 face) const;
  [[nodiscard]] SubentMatch matchAround(OdModelerSubent subent, const FaceRespawn& row);
  [[nodiscard]] std::vector<OdUInt32> whereImagesMeet(OdModelerSubent subent,
                                                      std::span<const OdUInt32> candidates);
  [[nodiscard]] std::vector<OdUInt32> candidatesAround(OdModelerSubentType type,
                                                       std::span<const OdUInt32> faces) const;
  [[nodiscard]] SubentMatch chooseByPlace(OdModelerSubentType type,
                                          const std::vector<OdUInt32>& candidates,
                                          const SubentSignature& wanted) const;
  [[nodiscard]] SubentMatch chooseIdentical(OdModelerSubentType type,
                                            const std::vector<OdUInt32>& candidates,
                                            const SubentSignature& wanted) const;
  const std::vector<OdUInt32>& imagesOfFace(OdUInt32 oldFace);

  std::span<const FaceRespawn> m_rows;
  const OdModelerBody& m_before;
  const OdModelerBody& m_now;
  LineageMatcher& m_lineage;
  mutable std::optional<MatchTolerance> m_tolerance;
  std::unordered_map<OdUInt32, std::size_t> m_byOldFace;
  std::unordered_map<OdUInt32, std::vector<OdUInt32>> m_images;
};

}  // namespace vdm_host
