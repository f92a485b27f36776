// A step of the update: which features the drawing has.
#include "host/modeling/component_query.h"
#include "host/modeling/component_size_feature.h"
#include "host/modeling/feature_handler.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

namespace vdm_host {

OdStatus indexFeatures(ModelUpdateContext& context) {
  context.managers = featureManagers(context.database);
  const OdRxClass* known = nullptr;  // mostly that of the feature before
  for (const OdDbObjectId& id : context.managers) {
    const VdmDbFeatureManagerPtr manager = id.safeOpenAs<VdmDbFeatureManager>();
    for (const OdDbObjectId& featureId : manager->featureIds()) {
      const VdmFeaturePtr feature = VdmFeature::open(featureId);
      if (feature.isNull()) continue;
      if (feature->isA() != std::exchange(known, feature->isA())) {
        context.hasFollowers |= followsEntities(known);
      }
      if (known == VdmComponentSizeFeature::desc()) context.sizeFeatures.append(featureId);
      const VdmComponentFeaturePtr component = VdmComponentFeature::cast(feature.get());
      if (component.isNull()) continue;
      context.components[component->solidId()].append(featureId);
      if (component->hasOwnSizes()) context.sizedInserts.append(featureId);
    }
  }
  return {};
}

}  // namespace vdm_host
