// ModelUpdateContext: the state of one update of a drawing, which its steps hand on.
#pragma once

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/modeling/component_feature.h"
#include "host/modeling/entity_changes.h"
#include "host/modeling/pass_recorder.h"
#include "host/modeling/update_report.h"
#include "host/naming/reference_update.h"
#include "platform/db/database.h"
#include "platform/modeler/solid_journal.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_update_context.h"

namespace vdm_host {

/// Faces of a component's opening in a solid's present body, by the number of the tool's face.
struct Opening {
  OdDbObjectId feature;
  std::map<int, std::vector<OdUInt32>> faces;
};

/// One update of a drawing: what the edit left, what the steps of model_update_steps.h work out
/// from it, and what they hand to the module's passes. Every pass carries it in its context, so the
/// helper of a pass finds it there. Belongs to runModelUpdate.
class ModelUpdateContext final : public VdmUpdateHost {
 public:
  ModelUpdateContext(OdDbDatabase* ofDatabase, OdSolidJournal& ofJournal, EntityChanges& ofChanges,
                     UpdateReport& toReport);

  // The edit. All of it outlives the update.
  OdDbDatabase* const database;
  OdSolidJournal& journal;
  EntityChanges& changes;
  bool isForced = false;   ///< every component is healed and done anew
  bool isForeign = false;  ///< solids were changed without a journal: every reference is opened

  // What features there are.
  OdDbObjectIdArray managers;
  std::unordered_map<OdDbObjectId, OdDbObjectIdArray> components;  ///< by solid
  OdDbObjectIdArray sizeFeatures;  ///< of components with dimensions that expressions give
  OdDbObjectIdArray sizedInserts;  ///< components with sizes of their own
  bool hasFollowers = false;       ///< some feature may follow changes of entities by itself

  // What the steps found out.
  std::vector<OdDbObjectId> replacedSolids;
  ReferenceUpdateReport references;
  std::size_t numSettled = 0;  ///< changes in the journal that references have followed
  std::unordered_map<OdDbObjectId, std::vector<Opening>> openings;  ///< by solid
  bool leavesUnwatched = false;  ///< references that a feature has dropped

  // The passes.
  VdmDependenciesReplacementMap map;      ///< input of the next round
  VdmDependenciesReplacementMap nextMap;  ///< what the present round replaces
  VdmUpdateContext pass;                  ///< handed to the module, constraint status and all
  PassRecorder recorder;
  UpdateReport& report;

  /// Components of a solid, in the order of their blocks.
  [[nodiscard]] const OdDbObjectIdArray& componentsAt(const OdDbObjectId& solid) const;
  /// The component is to be done anew because all are; true once for each.
  [[nodiscard]] bool takeForced(const OdDbObjectId& feature) {
    return isForced && m_done.insert(feature).second;
  }
  void noteReferences(ReferenceUpdateReport settled) { references.add(std::move(settled)); }

  [[nodiscard]] bool hasChangedEntities() const override;
  [[nodiscard]] bool concerns(const VdmFeature& feature, const OdDbObjectId& entity) const override;
  [[nodiscard]] std::optional<std::size_t> numChangedEntities() const override {
    return changes.count();
  }
  [[nodiscard]] OdDbObjectId changedEntity(std::size_t number) const override {
    return changes.entity(number);
  }

 private:
  std::unordered_set<OdDbObjectId> m_done;  // by force
};

/// A component's feature; null when it does not open or is another feature.
[[nodiscard]] VdmComponentFeaturePtr openComponent(const OdDbObjectId& id,
                                                   OdDb::OpenMode mode = OdDb::kForRead);

}  // namespace vdm_host
