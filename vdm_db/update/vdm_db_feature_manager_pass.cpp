// Update passes over the features of a manager, and what follows them.
#include <iterator>

#include "platform/db/database.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_feature_manager_impl.h"
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_db/update/vdm_feature_update_driver.h"

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
  data.setConstraintsCalculated(/*calculated=*/false, /*successful=*/false);
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
  assertReadEnabled();
  bool changed = false;
  if (!map.isEmpty() || featuresTellChanges(constraintsWereCalculated)) {
    VdmFeatureUpdateData data(this);
    data.setConstraintsCalculated(constraintsWereCalculated, constraintsWereCalculatedSuccesfully);
    VdmFeatureUpdateInput input;
    input.replacementMap = &map;
    input.data = &data;
    const OdDbObjectIdArray ids = featureIds();
    changed = vdmRunFeatureUpdate(this, ids, input);
  }
  if (postFlags != PostprocessNone) changed |= postprocess(map, postFlags);
  return changed;
}

bool VdmDbFeatureManager::featuresTellChanges(bool constraintsWereCalculated) const {
  for (const OdDbObjectId& id : featureIds()) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (feature.isNull()) continue;
    bool recalculation = false;
    if (feature->hasChanges(recalculation)) return true;
    if (recalculation && constraintsWereCalculated) return true;
  }
  return false;
}

// ---- Modified entities

namespace {

struct Postprocessing {
  EPostprocessingOperationType bit;
  bool (VdmDbSheetMetalContextPE::*run)(OdDbObject*, const OdDbObjectIdArray&);
};

// In the order in which they run.
constexpr Postprocessing kPostprocessings[] = {
    {PostprocessBit2, &VdmDbSheetMetalContextPE::updateRecognition},
    {PostprocessBit4, &VdmDbSheetMetalContextPE::updateGeometry},
    {PostprocessBit1, &VdmDbSheetMetalContextPE::updateUnfolding},
};

OdDbObjectId modelSpaceContext(OdDbDatabase* database) {
  if (database == nullptr) return OdDbObjectId::kNull;
  const VdmDbFeatureManagerPtr manager =
      VdmDbFeatureManager::getInstance(database->getModelSpaceId(), /*create=*/false)
          .openAs<VdmDbFeatureManager>();
  return manager.isNull() ? OdDbObjectId::kNull : manager->sheetMetalContext();
}

}  // namespace

bool VdmDbFeatureManager::postprocess(const VdmDependenciesReplacementMap& map,
                                      EPostprocessingOperationType& postFlags) const {
  if (map.isEmpty()) return false;
  const OdDbObjectPtr context = modelSpaceContext(database()).openObject();
  if (context.isNull()) return false;
  const OdSmartPtr<VdmDbSheetMetalContextPE> extension =
      VdmDbSheetMetalContextPE::cast(context.get());
  if (extension.isNull()) return false;
  const OdDbObjectIdArray modified = map.modifiedEnts();
  for (const Postprocessing& step : kPostprocessings) {
    if ((postFlags & step.bit) == 0) continue;
    const bool changed = (extension.get()->*step.run)(context, modified);
    postFlags = static_cast<EPostprocessingOperationType>(postFlags & ~step.bit);
    if (changed) return true;
  }
  return false;
}
