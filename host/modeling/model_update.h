// ModelUpdate: brings a drawing up to date with an edit: references, components, features.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/pass_recorder.h"
#include "host/modeling/update_report.h"
#include "host/naming/reference_update.h"
#include "platform/db/database.h"
#include "platform/modeler/solid_journal.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

namespace vdm_host {

/// One run, within the transaction and the journal of the caller:
///
///   1. solids that were moved take their components along; pieces of components lose what direct
///      booleans did, and take in what blends of their rims took away; components of replaced
///      bodies are to be cut anew;
///   2. references follow what the journal says, and inserts follow their displaced base faces;
///   3. the features of every block run their pass, over all that was replaced or moved;
///   4. what the pass itself replaced is the input of another round, until nothing is new.
///
/// A failure leaves everything half done: the caller rolls back. While it runs it is known to the
/// helpers of its passes through current().
class ModelUpdate {
 public:
  ModelUpdate(OdDbDatabase* database, OdSolidJournal& journal, UpdateReport& report);
  ~ModelUpdate();
  ModelUpdate(const ModelUpdate&) = delete;
  ModelUpdate& operator=(const ModelUpdate&) = delete;

  /// `force` has every component healed and done anew. With `foreign` references into solids that
  /// were changed while nobody kept a journal are looked for, too: every reference is opened.
  OdStatus run(bool force, bool foreign = false);

  /// The innermost run of this thread; null when there is none.
  static ModelUpdate* current();

  // For the helper of a pass.
  /// The component is to be done anew; true once for each.
  [[nodiscard]] bool isForced(const OdDbObjectId& feature) {
    return m_force && m_done.insert(feature).second;
  }
  [[nodiscard]] PassRecorder& recorder() { return m_recorder; }
  /// What references that change during a pass are entered in: the input of the next round.
  [[nodiscard]] VdmDependenciesReplacementMap& nextMap() { return *m_nextMap; }
  void noteReferences(ReferenceUpdateReport report);
  /// What the tools of a component left in a solid: `faces` by the numbers of the tools' faces.
  /// Told for each component that a pass has done, after forgetOpenings().
  void noteOpening(const OdDbObjectId& solid, const OdDbObjectId& feature,
                   std::vector<std::pair<int, std::vector<OdUInt32>>> faces);
  void forgetOpenings(const OdDbObjectId& solid) { m_openings.erase(solid); }
  /// Components of a solid, in the order of their blocks.
  [[nodiscard]] const OdDbObjectIdArray& componentsAt(const OdDbObjectId& solid) const;

 private:
  static constexpr OdUInt32 kMaxRounds = 8;

  void indexComponents();
  OdStatus followSolids();
  OdStatus carryAlong(const OdDbObjectId& solid, const OdGeMatrix3d& transform);
  OdStatus excludeTools(const OdSolidChange& change);
  OdStatus adoptBlend(const OdSolidChange& change);
  [[nodiscard]] std::unique_ptr<ResidueLedger> appliedPieces(const OdDbObjectId& solid) const;
  static void storePieces(ResidueLedger& ledger);
  void forgetPieces(const OdDbObjectId& solid);
  void settleReferences();
  void settleForeignChanges();
  void followBaseFaces(const OdDbObjectId& solid);
  void enterChangedInserts();
  bool runRound();
  void eraseUnwatched();
  void separateOpenings();
  void dropOpeningFaces(const OdDbObjectId& feature,
                        const std::function<bool(int, OdUInt32)>& isForeign);
  void dropUnwatched();
  void reportReferences();

  OdDbDatabase* m_database;
  OdSolidJournal& m_journal;
  UpdateReport& m_report;
  PassRecorder m_recorder;
  ModelUpdate* m_outer;
  bool m_force = false;
  bool m_leavesUnwatched = false;           // references that a feature had let go
  std::unordered_set<OdDbObjectId> m_done;  // by force
  OdDbObjectIdArray m_managers;
  std::unordered_map<OdDbObjectId, OdDbObjectIdArray> m_components;  // by solid
  std::vector<OdDbObjectId> m_replacedSolids;
  std::unique_ptr<VdmDependenciesReplacementMap> m_map;
  std::unique_ptr<VdmDependenciesReplacementMap> m_nextMap;
  ReferenceUpdateReport m_references;

  /// Faces of a component's opening in a solid's present body.
  struct Opening {
    OdDbObjectId feature;
    std::map<int, std::vector<OdUInt32>> faces;  // by the number of the tool's face
  };
  std::unordered_map<OdDbObjectId, std::vector<Opening>> m_openings;  // by solid
};

}  // namespace vdm_host
