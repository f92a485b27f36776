// Brings the persistent references of solids up to date after their bodies changed.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "host/naming/body_motion.h"
#include "host/naming/face_respawn.h"
#include "host/naming/reference_record.h"
#include "platform/base/non_copyable.h"
#include "platform/db/subent.h"
#include "platform/modeler/solid_journal.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

namespace vdm_host {

/// What became of one reference; reported when more than its number changed.
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
  OdDbObjectIdArray replacedBy;  ///< dependencies that replace it
};

/// How a body that was replaced without a history was read.
struct BodyReading {
  OdDbObjectId solid;
  BodyMotion motion;         ///< of the best reading
  std::size_t readings = 1;  ///< that were left; references on which they differ are ambiguous
};

struct ReferenceUpdateReport {
  OdUInt32 looked = 0;      ///< references into the changed solids
  OdUInt32 renumbered = 0;  ///< of these: got another number
  OdUInt32 lost = 0;        ///< became lost
  OdUInt32 ambiguous = 0;   ///< became ambiguous
  std::vector<ReferenceChange> changes;
  std::vector<BodyReading> readings;

  void add(ReferenceUpdateReport other);
};

/// One run over a drawing. For each changed solid it decides what the references mean in the new
/// body, by the laws of docs/naming.md. Then it calls the managers of persistent ids (updatePairs,
/// split, finishRemap) and fills the replacement map (replacements, modified entities).
///
/// Needs VdmDbPersIdManagerPE to be attached (pers_id_manager_pe.h). Works within the caller's
/// transaction; a caller that rolls that back drops the map too.
class ReferenceUpdate : OdNonCopyable {
 public:
  /// The map outlives this.
  explicit ReferenceUpdate(VdmDependenciesReplacementMap& map);
  ~ReferenceUpdate();

  /// The feature to which a tool body belongs, for the explanations.
  void nameTool(const OdModelerBodyPtr& tool, OdDbHandle feature);
  /// A face of an opening that the next settle() takes into account.
  void addRespawn(const OdDbObjectId& solid, FaceRespawn respawn);

  /// Brings the references into all solids that the changes name up to date. Each change is given
  /// in one call only, in order; a later call may change the same solid again.
  ReferenceUpdateReport settle(std::span<const OdSolidChange> changes);
  /// The same for a solid that was changed without a journal: does nothing when its stamp is that
  /// of its present body.
  ReferenceUpdateReport settleByStamp(const OdDbObjectId& solid);

 private:
  class Impl;
  std::unique_ptr<Impl> m_impl;
};

}  // namespace vdm_host
