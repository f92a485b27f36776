// Update passes over the features of a manager, and what follows them.
#include <algorithm>
#include <utility>

#include "platform/base/non_copyable.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_feature_manager_impl.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_db/update/vdm_feature_update_driver.h"

namespace {

/// A pass over given features knows nothing of constraints. What a handed context says of them
/// comes back after it.
class WithoutConstraints : OdNonCopyable {
 public:
  explicit WithoutConstraints(VdmUpdateContext& context)
      : m_context(context),
        m_calculated(std::exchange(context.constraintsWereCalculated, false)),
        m_successful(std::exchange(context.constraintsWereCalculatedSuccesfully, false)) {}
  ~WithoutConstraints() {
    m_context.constraintsWereCalculated = m_calculated;
    m_context.constraintsWereCalculatedSuccesfully = m_successful;
  }

 private:
  VdmUpdateContext& m_context;
  bool m_calculated;
  bool m_successful;
};

}  // namespace

// ---- Given features

bool VdmDbFeatureManager::update(const OdDbObjectIdArray& ids) {
  VdmFeatureUpdateData data(this);
  return update(ids, data);
}

bool VdmDbFeatureManager::update(const OdDbObjectIdArray& ids, VdmFeatureUpdateData& data) {
  assertReadEnabled();
  const VdmDependenciesReplacementMap noReplacements;
  VdmFeatureUpdateInput input;
  input.replacementMap = &noReplacements;
  input.data = &data;
  input.force = true;
  const WithoutConstraints withoutConstraints(data.context());
  const bool changed = vdmRunFeatureUpdate(this, ids, input);
  for (const OdDbObjectId& id : std::as_const(input.depsToErase)) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>(OdDb::kForWrite);
    if (!dependency.isNull()) dependency->erase();
  }
  return changed;
}

// ---- All features

bool VdmDbFeatureManager::updateFeatures(const VdmDependenciesReplacementMap& map,
                                         bool constraintsWereCalculated,
                                         bool constraintsWereCalculatedSuccesfully,
                                         EPostprocessingOperationType& postFlags) {
  VdmUpdateContext context;
  context.replacementMap = &map;
  context.constraintsWereCalculated = constraintsWereCalculated;
  context.constraintsWereCalculatedSuccesfully = constraintsWereCalculatedSuccesfully;
  context.postFlags = postFlags;
  const bool changed = updateFeatures(context);
  postFlags = context.postFlags;
  return changed;
}

bool VdmDbFeatureManager::updateFeatures(VdmUpdateContext& context) {
  assertReadEnabled();
  if (!isPassDue(context)) return false;
  VdmFeatureUpdateData data(this, context);
  VdmFeatureUpdateInput input;
  input.replacementMap = context.replacementMap;
  input.data = &data;
  input.onlyDue = context.observer == nullptr || !context.observer->hearsEachSkipped();
  const OdDbObjectIdArray ids = featureIds();
  return vdmRunFeatureUpdate(this, ids, input);
}

bool VdmDbFeatureManager::isPassDue(const VdmUpdateContext& context) const {
  const bool mapIsEmpty = context.replacementMap == nullptr || context.replacementMap->isEmpty();
  return !mapIsEmpty || (context.host != nullptr && context.host->hasChangedEntities()) ||
         featuresTellChanges(context.constraintsWereCalculated);
}

VdmFeatureIndex* VdmDbFeatureManager::currentIndex() const {
  VdmDbFeatureManagerImpl& impl = implForRead();
  if (database() == nullptr) return nullptr;
  if (!impl.index) impl.index = std::make_unique<VdmFeatureIndex>(database());
  return impl.index->bringUpToDate(impl.features) ? impl.index.get() : nullptr;
}

// What the index does not know is asked for: hasChanges() may do anything, so the index is not
// looked at meanwhile.
bool VdmDbFeatureManager::featuresTellChanges(bool constraintsWereCalculated) const {
  using Look = VdmFeatureLook;
  OdUInt32 telling = Look::kAsked | Look::kChanged;
  if (constraintsWereCalculated) telling |= Look::kRecalculated;
  OdDbObjectIdArray asked;
  if (VdmFeatureIndex* index = currentIndex()) {
    bool isTold = false;
    index->forEachWith(telling, [&](VdmFeatureIndex::Slot slot) {
      if (index->place(slot) == VdmFeatureIndex::kNoPlace) return;
      if ((index->traits(slot) & (Look::kAsked | Look::kUnknown)) != 0) {
        asked.append(index->feature(slot));
      } else {
        isTold = true;
      }
    });
    if (isTold) return true;
  } else {
    asked = featureIds();
  }
  return std::any_of(asked.begin(), asked.end(), [&](const OdDbObjectId& id) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (feature.isNull()) return false;
    bool recalculation = false;
    return feature->hasChanges(recalculation) || (recalculation && constraintsWereCalculated);
  });
}
