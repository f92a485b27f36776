// Brings the persistent references of solids up to date after their bodies changed.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "host/naming/reference_record.h"
#include "platform/db/subent.h"
#include "platform/modeler/solid_journal.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

namespace vdm_host {

/// One face of an opening that was closed and, perhaps, cut again: what the tool's face left in the
/// old body and in the new one.
struct FaceRespawn {
  OdDbHandle feature;              ///< whose opening it is
  OdUInt32 toolFace = 0;           ///< the face of the tool
  OdUInt32 oldFace = 0;            ///< in the body before the changes; 0 when it was closed already
  std::vector<OdUInt32> newFaces;  ///< in the body after the changes; none when it stays closed
  OdGeMatrix3d motion;             ///< how the tool moved between its two cuts
};

/// What became of one reference, told when more than its number changed.
struct ReferenceChange {
  OdDbObjectId dependency;
  OdDbObjectId solid;
  OdModelerSubentType type = OdModelerSubentType::kNull;
  OdUInt32 from = 0;  ///< old number, 0 when it was unresolved
  OdUInt32 to = 0;    ///< new number, 0 when it is unresolved
  ReferenceGrade gradeBefore = ReferenceGrade::kExact;
  ReferenceGrade grade = ReferenceGrade::kExact;
  LineageCause cause = LineageCause::kBoolean;
  OdDbHandle feature;            ///< whose tool did it; null when none did
  OdDbObjectIdArray replacedBy;  ///< dependencies that stand for it now
};

struct ReferenceUpdateReport {
  OdUInt32 looked = 0;      ///< references into the changed solids
  OdUInt32 renumbered = 0;  ///< that got another number
  OdUInt32 lost = 0;        ///< that are lost now and were not before
  OdUInt32 ambiguous = 0;   ///< that are ambiguous now and were not before
  std::vector<ReferenceChange> changes;

  void add(ReferenceUpdateReport other);
};

/// One run over a drawing. For each changed solid: what the references stand for in the new body is
/// decided by the laws of docs/naming.md, then the managers of persistent ids are told:
/// updatePairs, split, finishRemap, and the replacement map is filled (replacements, modified
/// entities).
///
/// Needs VdmDbPersIdManagerPE to be attached (pers_id_manager_pe.h). Works within the caller's
/// transaction; whoever rolls that back drops the map too.
class ReferenceUpdate {
 public:
  /// The map outlives this.
  explicit ReferenceUpdate(VdmDependenciesReplacementMap& map);
  ~ReferenceUpdate();
  ReferenceUpdate(const ReferenceUpdate&) = delete;
  ReferenceUpdate& operator=(const ReferenceUpdate&) = delete;

  /// The feature to which a tool body belongs, for the explanations.
  void nameTool(const OdModelerBodyPtr& tool, OdDbHandle feature);
  /// A face of an opening; see FaceRespawn. To be told before settle().
  void addRespawn(const OdDbObjectId& solid, FaceRespawn respawn);
  /// finishRemap2 instead of finishRemap from now on: the map has been used by a pass already.
  void setSecondPass(bool isSecond);

  /// Brings the references into all solids that the changes name up to date. Changes of a run are
  /// told once, in order; a solid may come again in a later call.
  ReferenceUpdateReport settle(std::span<const OdSolidChange> changes);
  /// The same for a solid of which nothing was written down: does nothing when its references are
  /// those of its present body.
  ReferenceUpdateReport settleByStamp(const OdDbObjectId& solid);

 private:
  class Impl;
  std::unique_ptr<Impl> m_impl;
};

/// The dependencies that lead into an entity, those of constraints among them; with any through
/// block references, in order of handles.
[[nodiscard]] OdDbObjectIdArray dependenciesInto(const OdDbObjectId& entity);

}  // namespace vdm_host
