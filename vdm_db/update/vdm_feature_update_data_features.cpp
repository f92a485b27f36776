// VdmFeatureUpdateData: the features' own part of an update pass.
#include "vdm_db/update/vdm_feature_update_data.h"

#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/update/vdm_feature_guard.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"

template <class Step>
bool VdmFeatureUpdateData::forEachFeatureToUpdate(Step step) {
  bool changed = false;
  // A feature may have the pass wait for more features while it works.
  for (OdUInt32 i = 0; i < m_featuresToUpdate.size(); ++i) {
    const OdSmartPtr<VdmFeature> feature = m_featuresToUpdate[i];
    const OdDbObject* carrier = feature->getDbObject();
    if (carrier == nullptr || carrier->isErased()) continue;
    const OdDbObjectId id = carrier->objectId();
    changed |= vdmGuardFeature(id, observer(), [&] {
      feature->upgradeOpen();
      return step(feature.get(), id);
    });
  }
  return changed;
}

bool VdmFeatureUpdateData::update() {
  return forEachFeatureToUpdate([this](VdmFeature* feature, const OdDbObjectId& id) {
    const bool changed = feature->update(*this);
    if (observer() != nullptr) observer()->featureUpdated(id, changed);
    return changed;
  });
}

bool VdmFeatureUpdateData::initFeatures() {
  if (m_helper) {
    vdmGuardFeature(OdDbObjectId(), observer(), [this] {
      m_helper->prepareInit();
      return true;
    });
  }
  const bool changed = forEachFeatureToUpdate([this](VdmFeature* feature, const OdDbObjectId& id) {
    const bool initChanged = feature->initAfterUpdate(*this);
    if (observer() != nullptr) observer()->featureInitialised(id, initChanged);
    return initChanged;
  });
  m_featuresToUpdate.clear();
  return changed;
}
