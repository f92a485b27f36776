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
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace vdm_host {

/// Where a reference leads so far.
struct Reference {
  OdDbObjectId dependency;
  OdModelerSubent old;   ///< index 0 when it was unresolved
  bool isPlain = false;  ///< its path is the solid alone
};

/// What was decided for one reference.
struct Decision : Reference {
  SubentMatch match;
  LineageCause cause = LineageCause::kBoolean;
  OdDbHandle feature;
  std::optional<LineageBirth> birth;
};

/// Null when it cannot be opened.
[[nodiscard]] inline VdmDbObjectDependencyPtr openDependency(const OdDbObjectId& id,
                                                             OdDb::OpenMode mode = OdDb::kForRead) {
  return id.openAs<VdmDbObjectDependency>(mode);
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
  /// Who was first to claim each subentity of the new body.
  class Claims {
   public:
    explicit Claims(const OdModelerBody& body) : m_body(body) {}
    /// The earlier claimant, null when there is none.
    OdDbObjectId claim(OdModelerSubent subent, const OdDbObjectId& id) {
      std::vector<OdUInt32>& row = m_rows[static_cast<std::size_t>(subent.type) - 1];
      if (row.empty()) row.resize(std::size_t{m_body.numSubents(subent.type)} + 1);
      if (subent.index >= row.size()) return {};
      OdUInt32& claimant = row[subent.index];
      if (claimant != 0) return m_claimants[claimant - 1];
      m_claimants.push_back(id);
      claimant = static_cast<OdUInt32>(m_claimants.size());
      return {};
    }

   private:
    const OdModelerBody& m_body;
    std::array<std::vector<OdUInt32>, 3> m_rows;  // by type and index: place in m_claimants + 1
    std::vector<OdDbObjectId> m_claimants;
  };
  /// Dependencies of one solid that get another path, by their managers.
  class LinkMoves {
   public:
    /// `isPlain`: the path is the solid alone.
    void add(const OdDbObjectId& dependency, bool isPlain, OdDbSubentId subent);
    /// All of a manager in one call. Nothing is left to move afterwards.
    void carryOut();
    explicit LinkMoves(const OdDbObjectId& solid) { m_direct.append(solid); }

   private:
    struct Row {
      OdDbObjectId manager;
      OdDbObjectIdArray ids;
      OdDbFullSubentPathArray paths;
    };
    OdDbObjectIdArray m_direct;
    std::map<OdUInt64, Row> m_rows;  // by the manager's handle
    Row* m_row = nullptr;            // that of the manager that was met last
  };

  // The run.
  void settleSolid(const OdDbObjectId& id, const BodyLineage& lineage);
  OdDbHandle featureOf(const OdDbObjectId& solid, const BodyLineage& lineage) const;

  // Deciding.
  struct LineageWork;
  void decideByLineage(Solid& solid, const BodyTrace& trace);
  bool isOnlyRenumbered(LineageWork& work, const Reference& reference);
  void decideOne(LineageWork& work, const Reference& reference);
  void claim(LineageWork& work, const OdDbObjectId& dependency, OdModelerSubent subentNow);
  void decideBySignature(Solid& solid);
  void decideByRecords(Solid& solid);
  void decideLost(Solid& solid);
  template <class Visit>
  static void forEachSubent(const Solid& solid, const Visit& visit);
  void goOn(LineageWork& work, Decision& decision) const;
  static void comeBack(LineageWork& work, Decision& decision);

  bool isManaged(const OdDbObjectId& dependency);
  void noteMeeting(const OdDbObjectId& first, const OdDbObjectId& other, const OdDbObjectId& solid,
                   OdModelerSubent subent);

  // Carrying out.
  void apply(Solid& solid);
  void renumber(LinkMoves& moves, const Reference& reference, OdUInt32 image);
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
