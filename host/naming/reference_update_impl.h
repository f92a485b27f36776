// The work of ReferenceUpdate: decisions about the references of a solid, and carrying them out.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/naming/birth_matcher.h"
#include "host/naming/body_lineage.h"
#include "host/naming/lineage_matcher.h"
#include "host/naming/reference_update.h"
#include "host/naming/solid_stamp.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

class VdmDbPersIdManager;

namespace vdm_host {

/// A reference before the decision.
struct Reference {
  OdDbObjectId dependency;
  OdModelerSubent old;   ///< index 0 when it was unresolved
  bool isPlain = false;  ///< its path is the solid alone, without block references
};

/// What was decided for one reference.
struct Decision : Reference {
  SubentMatch match;
  LineageCause cause = LineageCause::kBoolean;
  OdDbHandle feature;
  std::optional<LineageBirth> birth;
  std::vector<BirthSet> births;  ///< to be remembered; none leaves what is
};

/// Null when it cannot be opened.
[[nodiscard]] inline VdmDbObjectDependencyPtr openDependency(const OdDbObjectId& id,
                                                             OdDb::OpenMode mode = OdDb::kForRead) {
  return id.openAs<VdmDbObjectDependency>(mode);
}

/// One run: for each solid the decisions (reference_update_decide.cpp) and then their execution
/// (reference_update_apply.cpp); at the end merges (reference_update_merge.cpp). The run itself is
/// in reference_update.cpp.
class ReferenceUpdate::Impl {
 public:
  explicit Impl(VdmDependenciesReplacementMap& map) : m_map(map) {}

  ReferenceUpdateReport settle(std::span<const OdSolidChange> changes);
  ReferenceUpdateReport settleByStamp(const OdDbObjectId& solid);

  std::unordered_map<const OdModelerBody*, OdDbHandle> toolFeatures;
  std::unordered_map<OdDbObjectId, std::vector<FaceRespawn>> respawns;

 private:
  using Type = OdModelerSubentType;
  using ReplacementMap = VdmDependenciesReplacementMap;

  /// The work on one solid.
  struct Solid {
    OdDbObjectId id;
    OdModelerBodyPtr before;
    OdModelerBodyPtr now;
    SolidStamp stamp;
    SolidBirths births;  ///< of `before` at first, of `now` in the end
    OdDbObjectIdArray dependencies;
    std::vector<Decision> decisions;  ///< those that change something
  };
  /// A reference that leads to the same subentity as another one.
  struct Meeting {
    OdDbObjectId dependency;
    OdDbObjectId solid;
    OdModelerSubent subent;
  };
  /// The first reference that leads to each subentity of the new body.
  class Claims {
   public:
    explicit Claims(const OdModelerBody& body) : m_body(body) {}
    /// The reference that claimed it before; null for the first claim, which is noted.
    [[nodiscard]] OdDbObjectId claim(OdModelerSubent subent, const OdDbObjectId& id);

   private:
    const OdModelerBody& m_body;
    std::array<std::vector<OdUInt32>, 3> m_rows;  // by type and index: place in m_claimants + 1
    std::vector<OdDbObjectId> m_claimants;
  };
  /// Dependencies of one solid that get another path, collected by manager.
  class LinkMoves {
   public:
    /// `isPlain`: the path is the solid alone.
    void add(const OdDbObjectId& dependency, bool isPlain, OdDbSubentId subent);
    /// One call for each manager. Empty afterwards.
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
    Row* m_row = nullptr;            // of the manager that add() was called for last
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
  static void noteNewBirths(const Solid& solid, Decision& decision);
  void decideByRecords(Solid& solid);
  void decideLost(Solid& solid);
  template <class Visit>
  static void forEachSubent(const Solid& solid, const Visit& visit);
  void decideByBirths(LineageWork& work, Decision& decision) const;
  static BornReference bornReference(LineageWork& work, const Reference& reference);

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
  [[nodiscard]] OdDbObjectIdArray splitByManager(const Decision& decision);
  static void writeNewBirths(const Decision& decision);
  static void writeRecord(const OdDbObjectId& id, const Decision& decision,
                          const ReferenceRecord& from, OdUInt32 image, const Solid& solid);
  void report(const Solid& solid, const Decision& decision, ReferenceGrade before);
  static OdDbFullSubentPath pathTo(const OdDbObjectId& dependency, const OdDbSubentId& subent);

  // Merging.
  void finish();
  void noteMerges();
  void finishManager(VdmDbPersIdManager& manager);
  void sortMeetings();
  void writeMerged();
  void reportMerged(const Meeting& meeting, const OdDbObjectIdArray& by, ReferenceGrade before);
  void writeMergedRecord(const Meeting& meeting, const OdDbObjectId& fresh, OdUInt32 parts,
                         ReferenceRecord record) const;

  ReplacementMap& m_map;
  ReferenceUpdateReport m_report;
  OdDbHandle m_feature;
  std::map<OdUInt64, OdDbObjectId> m_managers;  // whose splits and merges wait for finish()
  std::vector<Meeting> m_meetings;
  // The owner in the last call of isManaged(), and its answer.
  OdDbObjectId m_lastOwner;
  bool m_lastIsManager = false;
};

}  // namespace vdm_host
