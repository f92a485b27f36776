// A step of the update: features compute what waits to be computed.
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

namespace vdm_host {

OdStatus evaluateFeatures(ModelUpdateContext& context) {
  for (const OdDbObjectId& id : context.managers) {
    if (!id.safeOpenAs<VdmDbFeatureManager>()->isNeedEvaluate()) continue;
    id.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)->evaluate();
  }
  return {};
}

}  // namespace vdm_host
