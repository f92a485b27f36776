// The work of ReferenceUpdate: decisions about the references of a solid, and carrying them out.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/naming/body_lineage.h"
#include "host/naming/lineage_match.h"
#include "host/naming/reference_update.h"
#include "host/naming/respawn_match.h"
#include "vdm_db/references/vdm_db_object_dependency.h"

namespace vdm_host {

/// What was decided for one reference.
struct Decision {
  OdDbObjectId dependency;
  OdModelerSubent old;   ///< index 0 when it was unresolved
  bool isPlain = false;  ///< its path is the solid alone
  SubentMatch match;
  LineageCause cause = LineageCause::kBoolean;
  OdDbHandle feature;
  std::optional<LineageBirth> birth;
};

/// Null when it cannot be opened.
[[nodiscard]] inline VdmDbObjectDependencyPtr openDependency(const OdDbObjectId& id,
                                                             OdDb::OpenMode mode = OdDb::kForRead) {
  return VdmDbObjectDependency::cast(id.openObject(mode));
}

/// Three sources: reference_update.cpp (the run, solid by solid), reference_decide.cpp and
/// reference_apply.cpp.
class ReferenceUpdate::Impl {
 public:
  explicit Impl(VdmDependenciesReplacementMap& map) : m_map(map) {}

  ReferenceUpdateReport settle(std::span<const OdSolidChange> changes);
  ReferenceUpdateReport settleByStamp(const OdDbObjectId& solid);

  std::unordered_map<const OdModelerBody*, OdDbHandle> toolFeatures;
  std::unordered_map<OdDbObjectId, std::vector<FaceRespawn>> respawns;
  bool isSecondPass = false;

 private:
  using Type = OdModelerSubentType;
  using ReplacementMap = VdmDependenciesReplacementMap;

  /// The work on one solid.
  struct Solid {
    OdDbObjectId id;
    OdModelerBodyPtr before;
    OdModelerBodyPtr now;
    SolidStamp stamp;
    OdDbObjectIdArray dependencies;
    std::vector<Decision> decisions;  ///< those that change something
  };
  /// A reference that leads where another one leads, too.
  struct Meeting {
    OdDbObjectId dependency;
    OdDbObjectId solid;
    OdModelerSubent subent;
  };
  /// Who was first to claim each subentity of the new body, by type and index.
  class Claims {
   public:
    explicit Claims(const OdModelerBody& body) {
      for (const Type type : {Type::kFace, Type::kEdge, Type::kVertex}) {
        row(type).resize(std::size_t{body.numSubents(type)} + 1);
      }
    }
    /// The earlier claimant, null when there is none.
    OdDbObjectId claim(OdModelerSubent subent, const OdDbObjectId& id) {
      std::vector<OdDbObjectId>& list = row(subent.type);
      if (subent.index >= list.size()) return {};
      if (list[subent.index].isNull()) {
        list[subent.index] = id;
        return {};
      }
      return list[subent.index];
    }

   private:
    std::vector<OdDbObjectId>& row(Type type) { return m_rows[static_cast<std::size_t>(type) - 1]; }
    std::array<std::vector<OdDbObjectId>, 3> m_rows;
  };

  // The run.
  void settleSolid(const OdDbObjectId& id, const BodyLineage& lineage);
  OdDbHandle featureOf(const OdDbObjectId& solid, const BodyLineage& lineage) const;

  // Deciding.
  void decideByLineage(Solid& solid, const BodyTrace& trace);
  void decideBySignature(Solid& solid);
  void decideByRecords(Solid& solid);
  void decideLost(Solid& solid);
  template <class Visit>
  static void forEachSubent(const Solid& solid, const Visit& visit);
  void decide(LineageMatcher& lineage, RespawnMatcher& respawn, Decision& decision) const;
  void comeBack(const VdmDbObjectDependency& dependency, LineageMatcher& lineage,
                RespawnMatcher& respawn, const Solid& solid, const BodyTrace& trace,
                Decision& decision) const;

  /// Managers merge what meets; dependencies of constraints are owned otherwise and stay apart.
  bool isManaged(const OdDbObjectId& dependency);
  void noteMeeting(const OdDbObjectId& first, const OdDbObjectId& other, const OdDbObjectId& solid,
                   OdModelerSubent subent);

  // Carrying out.
  void apply(Solid& solid);
  void setLinks(const Solid& solid);
  static void setLink(const OdDbObjectId& id, const OdDbFullSubentPath& path);
  void writeRecords(Solid& solid);
  void writeSplit(Solid& solid, const Decision& decision);
  void writeRecord(const OdDbObjectId& id, const Decision& decision, const ReferenceRecord& from,
                   OdUInt32 image, const Solid& solid) const;
  void tell(const Solid& solid, const Decision& decision, ReferenceGrade before);
  void finish();
  void writeMerged();
  static OdDbFullSubentPath pathTo(const OdDbObjectId& dependency, const OdDbSubentId& subent);

  ReplacementMap& m_map;
  ReferenceUpdateReport m_report;
  OdDbHandle m_feature;
  std::map<OdUInt64, OdDbObjectId> m_managers;  // touched and to be finished, by handle
  std::vector<Meeting> m_meetings;
  // The owner that isManaged() was asked for last, and its answer.
  OdDbObjectId m_lastOwner;
  bool m_lastIsManager = false;
};

}  // namespace vdm_host
