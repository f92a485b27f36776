// A step of the update: references that have lost their last watcher are taken out.
#include <algorithm>

#include "host/modeling/component_query.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

namespace vdm_host {

OdStatus dropUnwatched(ModelUpdateContext& context) {
  const auto isErased = [](const FeatureReport& feature) {
    return feature.outcome == FeatureOutcome::kCondemned;
  };
  // A feature that the pass erased leaves its references.
  if (!context.leavesUnwatched && std::ranges::none_of(context.report.features, isErased)) {
    return {};
  }
  for (const OdDbObjectId& id : context.managers) {
    const VdmDbFeatureManagerPtr manager = id.openAs<VdmDbFeatureManager>();
    if (!manager.isNull()) dropUnwatchedReferences(manager->blockId());
  }
  return {};
}

}  // namespace vdm_host
