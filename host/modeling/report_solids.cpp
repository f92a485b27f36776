// A step of the update: the report says how much of each solid the modeller looked at.
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"

namespace vdm_host {

OdStatus reportSolids(ModelUpdateContext& context) {
  for (const OdSolidChange& change : context.journal.changes()) {
    if (change.solid.isNull() || !change.history || !change.before) continue;
    const OdModelerEffort& effort = change.history->effort;
    if (effort.numFaces == 0 && effort.wholeBecause.isEmpty()) continue;
    context.report.solidWork.push_back(
        {change.solid, effort.numFaces, change.before->numFaces(), effort.wholeBecause});
  }
  return {};
}

}  // namespace vdm_host
