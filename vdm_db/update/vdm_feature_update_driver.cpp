// The update pass: its sequence, and the phases that hand over to features and to the helper.
#include "vdm_db/update/vdm_feature_update_driver.h"

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"
#include "vdm_utils/vdmc_assert.h"

/// One run. The phases of the data are its steps.
class VdmFeatureUpdateDriver {
 public:
  VdmFeatureUpdateDriver(VdmDbFeatureManager* manager, VdmFeatureUpdateInput& input)
      : m_manager(manager), m_input(input), m_data(*input.data) {}
  // The map of the input may die right after the pass.
  ~VdmFeatureUpdateDriver() { m_data.m_replacementMap = nullptr; }
  VdmFeatureUpdateDriver(const VdmFeatureUpdateDriver&) = delete;
  VdmFeatureUpdateDriver& operator=(const VdmFeatureUpdateDriver&) = delete;

  bool run(const OdDbObjectIdArray& ids) {
    const OdDbDatabasePtr database(m_manager->database());
    if (database.isNull()) return false;
    if (m_data.observer() != nullptr) m_data.observer()->passBegan(m_manager, ids.size());
    const bool changed = takeIn(ids) && runPhases(database);
    if (m_data.observer() != nullptr) m_data.observer()->passEnded(changed);
    return changed;
  }

 private:
  bool runPhases(OdDbDatabase* database) {
    bool changed = removeBeforeSolids();
    changeSolids(database);
    changed |= phase(VdmUpdatePhase::kUpdate, [this] { return m_data.update(); });
    changed |= phase(VdmUpdatePhase::kInitFeatures, [this] { return m_data.initFeatures(); });
    changed |= removeAfterUpdate();
    repairReferences();
    return changed;
  }

  bool takeIn(const OdDbObjectIdArray& ids) {
    const VdmDependenciesReplacementMap& map =
        m_input.replacementMap == nullptr ? m_noReplacements : *m_input.replacementMap;
    return phase(VdmUpdatePhase::kIntake, [&] { return m_data.init(ids, map, m_input.force); });
  }

  bool removeBeforeSolids() {
    return phase(VdmUpdatePhase::kEarlyRemoval, [this] {
      return m_data.removeUnusedData(m_data.featuresNeedUpdate() || m_data.hasFeaturesToRemove());
    });
  }

  // All or nothing: the guard aborts the transaction unless it is committed.
  void changeSolids(OdDbDatabase* database) {
    struct Operation {
      VdmUpdatePhase phase;
      bool (VdmFeatureUpdateData::*run)();
    };
    static constexpr Operation kOperations[] = {
        {VdmUpdatePhase::kPrepareSubtract, &VdmFeatureUpdateData::prepareForSubtract},
        {VdmUpdatePhase::kSubtract, &VdmFeatureUpdateData::subtractOperation},
        {VdmUpdatePhase::kUnite, &VdmFeatureUpdateData::unionOperation}};
    const std::size_t numInitialized = m_data.m_initializedEntities.size();
    OdDbTransaction transaction(database);
    for (const Operation& operation : kOperations) {
      if (phase(operation.phase, [&] { return (m_data.*operation.run)(); })) continue;
      // Model objects that were made meanwhile go, too, and may be asked for again.
      if (m_data.m_initializedEntities.size() != numInitialized)
        m_data.m_initializedEntities.clear();
      if (m_data.observer() != nullptr) m_data.observer()->transactionAborted(operation.phase);
      return;
    }
    transaction.commit();
  }

  // What features condemned in their update and initAfterUpdate.
  bool removeAfterUpdate() {
    return phase(VdmUpdatePhase::kLateRemoval, [this] {
      return m_data.hasFeaturesToRemove() && m_data.removeUnusedData(/*geometry=*/true);
    });
  }

  void repairReferences() {
    phase(VdmUpdatePhase::kDependencies, [this] {
      m_data.removeUnusedDependencies(m_input.depsToErase);
      return true;
    });
  }

  template <class Run>
  bool phase(VdmUpdatePhase which, Run run) {
    VdmUpdateObserver* observer = m_data.observer();
    if (observer == nullptr) return run();
    observer->phaseBegan(which);
    const bool result = run();
    observer->phaseEnded(which);
    return result;
  }

  VdmDbFeatureManager* m_manager;
  VdmFeatureUpdateInput& m_input;
  VdmFeatureUpdateData& m_data;
  const VdmDependenciesReplacementMap m_noReplacements;
};

bool vdmRunFeatureUpdate(VdmDbFeatureManager* manager, const OdDbObjectIdArray& ids,
                         VdmFeatureUpdateInput& input) {
  if (input.data == nullptr || manager == nullptr || ids.isEmpty()) return false;
  return VdmFeatureUpdateDriver(manager, input).run(ids);
}

// ---- The solid operations: the helper's

bool VdmFeatureUpdateData::prepareForSubtract() {
  return m_helper && m_helper->prepareForSubtract();
}
bool VdmFeatureUpdateData::subtractOperation() { return m_helper && m_helper->subtractOperation(); }
bool VdmFeatureUpdateData::unionOperation() { return m_helper && m_helper->unionOperation(); }

// ---- The features' own updates

template <class Step>
bool VdmFeatureUpdateData::forEachFeatureToUpdate(Step step) {
  bool changed = false;
  // A feature may have the pass wait for more features while it works.
  for (OdUInt32 i = 0; i < m_featuresToUpdate.size(); ++i) {
    const OdSmartPtr<VdmFeature> feature = m_featuresToUpdate[i];
    const OdDbObject* carrier = feature->getDbObject();
    if (carrier == nullptr || carrier->isErased()) continue;
    const OdDbObjectId id = carrier->objectId();
    try {
      feature->upgradeOpen();
      changed |= step(feature.get(), id);
    } catch (const OdError& error) {
      const OdString text = "feature " + id.getHandle().ascii() + ": " + error.description();
      vdmcCallAssert("false", text, "vdm_db/vdm_feature_update_data", __LINE__);
      if (m_observer != nullptr) m_observer->featureFailed(id, text);
    }
  }
  return changed;
}

bool VdmFeatureUpdateData::update() {
  return forEachFeatureToUpdate([this](VdmFeature* feature, const OdDbObjectId& id) {
    const bool changed = feature->update(*this);
    if (m_observer != nullptr) m_observer->featureUpdated(id, changed);
    return changed;
  });
}

bool VdmFeatureUpdateData::initFeatures() {
  if (m_helper) m_helper->prepareInit();
  const bool changed = forEachFeatureToUpdate(
      [this](VdmFeature* feature, const OdDbObjectId&) { return feature->initAfterUpdate(*this); });
  m_featuresToUpdate.clear();
  return changed;
}
