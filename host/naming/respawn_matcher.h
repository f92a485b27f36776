// Openings that were cut again: which new faces, edges and vertices are the old ones.
#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "host/naming/face_respawn.h"
#include "host/naming/lineage_matcher.h"
#include "host/naming/reference_record.h"

namespace vdm_host {

/// What became of a reference that touches an opening.
struct RespawnMatch {
  SubentMatch match;
  LineageBirth birth;
  bool closed = false;  ///< the opening was closed and not cut again
};

/// Laws:
///   1. an old face of an opening is what the same face of the tool left in the new body. Of
///      several such faces it is the one that lies as the old one does after the tool's motion;
///      otherwise it is all of them. A face in which several openings had merged is all of theirs;
///   2. an edge or vertex that touches such a face is the one where the images of all its old faces
///      meet and no other face does. Of several it is the one that lies as the old one did after
///      the motion, or the one that is nearest, when the next is at least twice as far; otherwise
///      it is ambiguous. Where the images meet nowhere, because the opening was cut into other
///      faces, it is the one at the opening that lies exactly as the old one did;
///   3. what touches a face that was closed is lost until the opening comes back. An edge or vertex
///      comes back where it lies exactly as it did;
///   4. what a face of a tool left is never the image of another face, even where it lies in that
///      face's old place.
class RespawnMatcher {
 public:
  /// The rows are those of one solid. All arguments outlive this; `lineage` decides about faces
  /// that are not of openings.
  RespawnMatcher(std::span<const FaceRespawn> rows, const OdModelerBody& before,
                 const OdModelerBody& now, LineageMatcher& lineage);

  [[nodiscard]] bool empty() const { return m_rows.empty(); }
  /// Whether match() decides about it.
  [[nodiscard]] bool touches(OdModelerSubent subent) const { return rowAt(subent) != nullptr; }
  /// None when the subentity touches no opening of the rows.
  [[nodiscard]] std::optional<RespawnMatch> match(OdModelerSubent subent);
  /// A reference that was lost with its opening. `wanted` is its signature where the solid is now;
  /// faces need none. None when the opening was not cut again.
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
