// Feature managers: taking out what was lost.
#include "vdm_db/drawing_utils/vdm_erase_utils.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"

// True when the feature cannot be without one of the reactors that were removed.
bool VdmDbFeatureManager::dropLostReactors(VdmFeature& feature) {
  bool broken = false;
  const OdDbObjectIdArray reactors = feature.reactors();
  for (const OdDbObjectId& id : reactors) {
    const VdmDbFeatureReactorPtr reactor = id.openAs<VdmDbFeatureReactor>();
    if (reactor.isNull() || reactor->doAudit()) continue;
    if (const VdmDbPersIdReactorPtr persIds = VdmDbPersIdReactor::cast(reactor.get());
        !persIds.isNull()) {
      broken |= feature.isRequiredDependency(static_cast<int>(persIds->mask()), persIds->tag());
    }
    const VdmFeaturePtr writable = VdmFeature::open(feature.objectId(), OdDb::kForWrite);
    if (!writable.isNull()) writable->removeReactor(id, /*eraseReactor=*/false);
    vdmu::eraseObject(id);
  }
  return broken;
}

void VdmDbFeatureManager::doAudit() {
  OdDbObjectIdArray ids;
  for (VdmDbIterator<VdmFeature> it = newFeatureIterator(); !it.done(); it.next()) {
    ids.append(it.objectId());
  }
  OdDbObjectIdArray broken;
  for (const OdDbObjectId& id : ids) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (feature.isNull()) continue;
    const bool lost = dropLostReactors(*feature);
    const bool hasReason = !feature->reactorIds().isEmpty() || !feature->ownedObjects().isEmpty();
    if (!lost && hasReason) continue;
    vdmu::eraseObjects(feature->reactors());
    broken.append(id);
  }
  assertWriteEnabled(/*autoUndo=*/false);
  takeOut(broken);
  vdmu::eraseObjects(broken);
}
