// VdmFeatureUpdateData: the features' own part of an update pass.
#include "vdm_db/update/vdm_feature_update_data.h"

#include "platform/base/error.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"
#include "vdm_utils/vdmc_assert.h"

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
      if (observer() != nullptr) observer()->featureFailed(id, text);
    }
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
  if (m_helper) m_helper->prepareInit();
  const bool changed = forEachFeatureToUpdate([this](VdmFeature* feature, const OdDbObjectId& id) {
    const bool initChanged = feature->initAfterUpdate(*this);
    if (observer() != nullptr) observer()->featureInitialised(id, initChanged);
    return initChanged;
  });
  m_featuresToUpdate.clear();
  return changed;
}
