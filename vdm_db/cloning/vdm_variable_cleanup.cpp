// Removing variables that nothing uses.
//
// Removing a variable removes its uses of others, which may be unused then. So the variables wait
// in a list, and those that define a removed one come to it again. Each removal adds at most as
// many as the removed one had dependencies, so the work is linear in variables and dependencies.
#include "vdm_db/cloning/vdm_variable_cleanup.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/common/vdm_object_id_hash.h"
#include "vdm_db/drawing_utils/vdm_assoc_action_utils.h"
#include "vdm_db/parameters/vdm_variable_names.h"

namespace {

bool isUsed(const OdDbAssocVariable* variable) {
  const OdDbObjectIdArray reactors = variable->getPersistentReactors();
  return std::any_of(reactors.begin(), reactors.end(), [](const OdDbObjectId& id) {
    const OdDbObjectPtr reactor = id.openObject();
    return !reactor.isNull() && vdmu::assocVariableReactorIsValid(reactor);
  });
}

void appendDefining(const OdDbAssocVariable* variable, std::vector<OdDbObjectId>& ids) {
  OdDbObjectIdArray dependencies;
  if (variable->getDependencies(/*readDependencies=*/true, /*writeDependencies=*/true,
                                dependencies) != eOk) {
    return;
  }
  for (const OdDbObjectId& id : dependencies) {
    const auto dependency = id.openAs<OdDbAssocValueDependency>();
    if (!dependency.isNull()) ids.push_back(dependency->dependentOnObject());
  }
}

}  // namespace

namespace vdmu {

void cleanUnusedVariables(const OdArray<OdDbObjectId>& ids) {
  std::unordered_set<OdDbObjectId, OdDbObjectIdHash> candidates;
  std::vector<OdDbObjectId> waiting;
  for (const OdDbObjectId& id : ids) {
    if (id.objectClass() == OdDbAssocVariable::desc() && candidates.insert(id).second) {
      waiting.push_back(id);
    }
  }
  std::reverse(waiting.begin(), waiting.end());  // the first one is last
  while (!waiting.empty()) {
    const OdDbObjectId id = waiting.back();
    waiting.pop_back();
    if (!candidates.contains(id)) continue;
    std::vector<OdDbObjectId> defining;
    {
      const auto variable = id.openAs<OdDbAssocVariable>();
      if (variable.isNull() || isUsed(variable)) continue;
      appendDefining(variable, defining);
    }
    candidates.erase(id);
    const auto network = id.ownerId().openAs<OdDbAssocNetwork>(OdDb::kForWrite);
    if (network.isNull() || network->removeAction(id) != eOk) continue;
    waiting.insert(waiting.end(), defining.rbegin(), defining.rend());
  }
}

void cleanUnusedVariables(OdDbIdMapping& mapping) {
  OdArray<OdDbIdPair> pairs;
  getClonedObjectsByExactType(mapping, OdDbAssocVariable::desc(), pairs);
  OdArray<OdDbObjectId> ids;
  for (const OdDbIdPair& pair : pairs) ids.append(pair.value());
  cleanUnusedVariables(ids);
}

void cleanUnusedVariables(OdDbObjectId block, int /*reserved*/) {
  cleanUnusedVariables(getAssocActions(block));
}

}  // namespace vdmu
