// The update pass: its steps, in the order in which they run.
#include "vdm_db/update/vdm_feature_update_driver.h"

#include <optional>

#include "platform/base/non_copyable.h"
#include "platform/db/database.h"
#include "platform/db/locked_layers.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_due_features.h"
#include "vdm_db/update/vdm_feature_guard.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

enum class Outcome { kUnchanged, kChanged, kFailed };

Outcome outcomeOf(bool changed) { return changed ? Outcome::kChanged : Outcome::kUnchanged; }

OdDbObjectPtr openSheetMetalContext(OdDbDatabase* database) {
  const VdmDbFeatureManagerPtr manager =
      VdmDbFeatureManager::getInstance(database->getModelSpaceId(), /*create=*/false)
          .openAs<VdmDbFeatureManager>();
  return manager.isNull() ? OdDbObjectPtr() : manager->sheetMetalContext().openObject();
}

/// Keeps the map of the input known to the data while a pass runs: it may end right after.
class MapOfPass : OdNonCopyable {
 public:
  MapOfPass(const VdmDependenciesReplacementMap*& place, const VdmDependenciesReplacementMap* map)
      : m_place(place) {
    m_place = map;
  }
  ~MapOfPass() { m_place = nullptr; }

 private:
  const VdmDependenciesReplacementMap*& m_place;
};

}  // namespace

/// One run: a table of steps. Each step asks whether it is due, works on the data, and says whether
/// it changed anything.
///
/// The three solid operations share one transaction of the drawing, which the first of them begins
/// and the last one commits. A step that fails aborts it, and the operations after it are not due.
class VdmFeatureUpdateDriver {
 public:
  VdmFeatureUpdateDriver(VdmDbFeatureManager* manager, const OdDbObjectIdArray& ids,
                         VdmFeatureUpdateInput& input)
      : m_manager(manager),
        m_ids(ids),
        m_database(manager->database()),
        m_input(input),
        m_data(*input.data),
        m_map(input.replacementMap == nullptr ? m_noReplacements : *input.replacementMap),
        m_mapOfPass(m_data.m_replacementMap, &m_map) {}

  bool run();

 private:
  struct Step {
    VdmUpdatePhase phase;
    bool (VdmFeatureUpdateDriver::*isDue)() const;
    Outcome (VdmFeatureUpdateDriver::*run)();
  };
  static const Step kSteps[];

  bool runStep(const Step& step, VdmUpdateObserver* observer) {
    if (observer != nullptr) observer->phaseBegan(step.phase);
    const Outcome outcome = areSolidsDone(step) ? runGuarded(step) : (this->*step.run)();
    if (observer != nullptr) observer->phaseEnded(step.phase);
    if (outcome == Outcome::kFailed) abortSolids(step.phase);
    return outcome == Outcome::kChanged;
  }

  // Changes are kept from there on: an error is reported, and the caller gets what was done.
  static bool areSolidsDone(const Step& step) { return step.phase >= VdmUpdatePhase::kUpdate; }
  Outcome runGuarded(const Step& step) {
    try {
      return (this->*step.run)();
    } catch (...) {
      vdmReportRaisedError(OdDbObjectId(), m_data.observer());
      return Outcome::kChanged;
    }
  }

  // ---- When steps are due

  bool hasFeatures() const { return !m_ids.isEmpty(); }
  bool solidsAreOpen() const { return m_solids.has_value(); }
  // As soon as one step of the sheet metal changed something, the others wait for another update.
  template <EPostprocessingOperationType kBit>
  bool isAskedFor() const {
    return (m_data.context().postFlags & kBit) != 0 && !m_sheetMetalChanged && !m_map.isEmpty() &&
           !VdmDbSheetMetalContextPE::cast(openSheetMetalContext(m_database).get()).isNull();
  }

  // ---- Features

  Outcome takeIn() {
    if (m_input.onlyDue) {
      VdmDueFeatures due(m_manager, m_map, m_data.context());
      m_data.initDue(due, m_map);
    } else {
      m_data.init(m_ids, m_map, m_input.force);
    }
    return Outcome::kUnchanged;
  }
  Outcome removeBeforeSolids() {
    return outcomeOf(
        m_data.removeUnusedData(m_data.featuresNeedUpdate() || m_data.hasFeaturesToRemove()));
  }
  Outcome update() { return outcomeOf(m_data.update()); }
  Outcome initFeatures() { return outcomeOf(m_data.initFeatures()); }
  // What features condemned in their update and initAfterUpdate.
  Outcome removeAfterUpdate() {
    return outcomeOf(m_data.hasFeaturesToRemove() && m_data.removeUnusedData(/*geometry=*/true));
  }
  Outcome repairReferences() {
    m_data.removeUnusedDependencies(m_input.depsToErase);
    return Outcome::kUnchanged;
  }

  // ---- Solids: all or nothing

  // An operation that raises an error has failed like one that gives false.
  bool succeeds(bool (VdmFeatureUpdateData::*operation)()) {
    try {
      return (m_data.*operation)();
    } catch (...) {
      m_raisedText = vdmRaisedErrorText();
      vdmcCallAssert("false", m_raisedText, "vdm_db/vdm_feature_update_driver", __LINE__);
      return false;
    }
  }
  Outcome failUnless(bool (VdmFeatureUpdateData::*operation)()) {
    return succeeds(operation) ? Outcome::kUnchanged : Outcome::kFailed;
  }

  Outcome prepareSolids() {
    m_numInitialized = m_data.m_initializedEntities.size();
    m_solids.emplace(m_database);
    return failUnless(&VdmFeatureUpdateData::prepareForSubtract);
  }
  Outcome subtract() { return failUnless(&VdmFeatureUpdateData::subtractOperation); }
  Outcome uniteAndCommit() {
    const bool isKept = succeeds(&VdmFeatureUpdateData::unionOperation) &&
                        succeeds(&VdmFeatureUpdateData::acceptSolids);
    if (!isKept) return Outcome::kFailed;
    m_solids->commit();
    m_solids.reset();
    return Outcome::kUnchanged;
  }
  void abortSolids(VdmUpdatePhase phase) {
    // Model objects that were made meanwhile are rolled back, too, and may be asked for again.
    if (m_data.m_initializedEntities.size() != m_numInitialized) {
      m_data.m_initializedEntities.clear();
    }
    m_solids.reset();
    if (m_data.helper() != nullptr) m_data.helper()->solidsAborted(phase, m_raisedText);
    if (m_data.observer() != nullptr) m_data.observer()->transactionAborted(phase);
  }

  // ---- Sheet metal

  using SheetMetalWork = bool (VdmDbSheetMetalContextPE::*)(OdDbObject*, const OdDbObjectIdArray&);

  template <EPostprocessingOperationType kBit, SheetMetalWork kWork>
  Outcome postprocess() {
    const OdDbObjectPtr context = openSheetMetalContext(m_database);
    const auto extension = VdmDbSheetMetalContextPE::cast(context.get());
    m_sheetMetalChanged = (extension.get()->*kWork)(context, m_map.modifiedEnts());
    EPostprocessingOperationType& flags = m_data.context().postFlags;
    flags = static_cast<EPostprocessingOperationType>(flags & ~kBit);
    return outcomeOf(m_sheetMetalChanged);
  }

  VdmDbFeatureManager* m_manager;
  const OdDbObjectIdArray& m_ids;
  const OdDbDatabasePtr m_database;
  VdmFeatureUpdateInput& m_input;
  VdmFeatureUpdateData& m_data;
  const VdmDependenciesReplacementMap m_noReplacements;
  const VdmDependenciesReplacementMap& m_map;
  const MapOfPass m_mapOfPass;
  std::optional<OdDbTransaction> m_solids;
  std::size_t m_numInitialized = 0;  // entities, before the solids
  OdString m_raisedText;             // of an error that a solid operation raised
  bool m_sheetMetalChanged = false;
};

using SheetMetal = VdmDbSheetMetalContextPE;

// A later capability adds its row where its turn comes. What is to come before the features, such
// as solving constraints, hands its outcome on in the context.
using Driver = VdmFeatureUpdateDriver;
constexpr Driver::Step Driver::kSteps[] = {
    {VdmUpdatePhase::kIntake, &Driver::hasFeatures, &Driver::takeIn},
    {VdmUpdatePhase::kEarlyRemoval, &Driver::hasFeatures, &Driver::removeBeforeSolids},
    {VdmUpdatePhase::kPrepareSubtract, &Driver::hasFeatures, &Driver::prepareSolids},
    {VdmUpdatePhase::kSubtract, &Driver::solidsAreOpen, &Driver::subtract},
    {VdmUpdatePhase::kUnite, &Driver::solidsAreOpen, &Driver::uniteAndCommit},
    {VdmUpdatePhase::kUpdate, &Driver::hasFeatures, &Driver::update},
    {VdmUpdatePhase::kInitFeatures, &Driver::hasFeatures, &Driver::initFeatures},
    {VdmUpdatePhase::kLateRemoval, &Driver::hasFeatures, &Driver::removeAfterUpdate},
    {VdmUpdatePhase::kDependencies, &Driver::hasFeatures, &Driver::repairReferences},
    {VdmUpdatePhase::kRecognition, &Driver::isAskedFor<PostprocessBit2>,
     &Driver::postprocess<PostprocessBit2, &SheetMetal::updateRecognition>},
    {VdmUpdatePhase::kGeometry, &Driver::isAskedFor<PostprocessBit4>,
     &Driver::postprocess<PostprocessBit4, &SheetMetal::updateGeometry>},
    {VdmUpdatePhase::kUnfolding, &Driver::isAskedFor<PostprocessBit1>,
     &Driver::postprocess<PostprocessBit1, &SheetMetal::updateUnfolding>},
};

bool VdmFeatureUpdateDriver::run() {
  if (m_database.isNull()) return false;
  VdmUpdateObserver* observer = m_data.observer();
  const bool isPass = observer != nullptr && hasFeatures();
  if (isPass) observer->passBegan(m_manager, m_ids.size());
  bool changed = false;
  for (const Step& step : kSteps) {
    if ((this->*step.isDue)()) changed |= runStep(step, observer);
  }
  if (isPass) observer->passEnded(changed);
  return changed;
}

bool vdmRunFeatureUpdate(VdmDbFeatureManager* manager, const OdDbObjectIdArray& ids,
                         VdmFeatureUpdateInput& input) {
  if (input.data == nullptr || manager == nullptr) return false;
  // What depends on a change follows it, also on locked layers.
  const OdDbLockedLayerAccess access(manager->database());
  return VdmFeatureUpdateDriver(manager, ids, input).run();
}
