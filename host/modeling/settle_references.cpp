// A step of the update: persistent references follow what the edit did.
#include <unordered_set>

#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "host/naming/reference_query.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {
namespace {

// Solids that were changed without a journal are known by their stamps.
void settleForeignChanges(ModelUpdateContext& context) {
  ReferenceUpdate update(context.map);
  std::unordered_set<OdDbObjectId> known;
  for (const OdDbObjectId& id : vdmu::getAllPersIdManagers(context.database)) {
    const VdmDbPersIdManagerPtr manager = id.openAs<VdmDbPersIdManager>();
    if (manager.isNull()) continue;
    const OdDbObjectIdArray dependencies = manager->objectDependencyIds();
    for (const ResolvedReference& found :
         resolveReferences({dependencies.begin(), dependencies.size()})) {
      if (!found.solid.isNull() && known.insert(found.solid).second) {
        context.noteReferences(update.settleByStamp(found.solid));
      }
    }
  }
}

}  // namespace

OdStatus settleReferences(ModelUpdateContext& context) {
  if (!context.journal.changes().empty()) {
    ReferenceUpdate update(context.map);
    context.noteReferences(update.settle(context.journal.changes()));
  }
  context.numSettled = context.journal.mark();
  if (context.isForeign) settleForeignChanges(context);
  return {};
}

}  // namespace vdm_host
