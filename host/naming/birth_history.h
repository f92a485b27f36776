// The births of a body's faces, followed through the changes of its solid.
#pragma once

#include <map>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "host/naming/face_respawn.h"
#include "host/naming/lineage_matcher.h"
#include "host/naming/solid_births.h"

namespace vdm_host {

/// Laws:
///   1. a face has the births of all old faces that became it, but for those of openings that were
///      closed or cut again: these are only where the tools' own faces are;
///   2. a face that a tool left has the birth of the tool's face. Where tools had one face
///   together,
///      each of its parts has the births of the tools whose faces reach it;
///   3. a face that the modeller built anew has the births of the one that it replaces;
///   4. a face of no known origin gets a new birth of the part (isFresh).
class BirthHistory {
 public:
  /// `births` are those of the body before the changes; they become those of the body after them.
  /// The rows are those of the solid. All arguments outlive this.
  BirthHistory(const OdDbObjectId& solid, SolidBirths& births, const OdModelerBody& before,
               const OdModelerBody& now, const BodyTrace& trace, LineageMatcher& lineage,
               std::span<const FaceRespawn> rows);

  [[nodiscard]] const FaceBirths& before() const { return m_before; }
  [[nodiscard]] const FaceBirths& now() const { return m_births.faces; }
  [[nodiscard]] const SolidBirths& solid() const { return m_births; }
  [[nodiscard]] bool isFresh(OdUInt32 face) const { return m_fresh.contains(face); }
  /// The opening was closed, and perhaps cut again.
  [[nodiscard]] bool isRedone(OdUInt32 maker) const { return m_motions.contains(maker); }
  /// How what a maker made moved.
  [[nodiscard]] const OdGeMatrix3d& motionOf(OdUInt32 maker) const;
  /// Whether a face of the new body that has this birth can have it at `box`, the box of an edge or
  /// vertex: false where the tool's face does not reach.
  [[nodiscard]] bool reaches(const FaceBirth& birth, const OdGeExtents3d& box) const;
  /// The births of an old face that only the rows know: its solid's record began without them.
  [[nodiscard]] std::span<const FaceBirth> lateBirths(OdUInt32 oldFace) const;

 private:
  void noteRedone(const OdDbObjectId& solid, std::span<const FaceRespawn> rows);
  void takeLateBirths();
  void followOldFaces(const OdModelerBody& before, LineageMatcher& lineage);
  void followTools(const OdModelerBody& now, std::span<const FaceRespawn> rows);
  void noteToolBoxes(std::span<const FaceRespawn> rows);
  void giveNewBirths(const OdModelerBody& now);

  SolidBirths& m_births;
  FaceBirths m_before;
  const BodyTrace& m_trace;
  std::vector<OdUInt32> m_makers;  // by row
  std::unordered_map<OdUInt32, OdGeMatrix3d> m_motions;
  std::unordered_map<OdUInt32, BirthSet> m_late;
  std::map<FaceBirth, OdGeExtents3d> m_toolBoxes;
  std::unordered_set<OdUInt32> m_fresh;
  std::vector<FaceBirths::Entry> m_entries;
  std::vector<FaceBirths::Entry> m_rebuilt;
};

}  // namespace vdm_host
