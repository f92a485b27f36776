// Evaluation of variables that are out of date.
#include "vdm_db/parameters/vdm_variable_evaluation.h"

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"

namespace vdmu {

void evaluateVariables(OdDbObjectId owner) {
  const auto network =
      OdDbAssocNetwork::getInstanceFromObject(owner, /*createIfDoesNotExist=*/false)
          .openAs<OdDbAssocNetwork>();
  if (network.isNull() || !oddbIsOutOfDate(network->status())) return;
  const VdmOpenUpgrade upgrade(network);
  network->evaluateValues(/*callback=*/nullptr);
}

void propagateVariableModification(OdDbObjectId id) {
  if (id.objectClass() == nullptr || id.objectClass() != OdDbAssocVariable::desc()) return;
  OdDbObjectId owner;
  if (const auto variable = id.openAs<OdDbAssocVariable>(); !variable.isNull()) {
    owner = variable->owningNetwork();
  }
  const auto network = owner.openAs<OdDbAssocNetwork>();
  if (network.isNull() || !oddbIsOutOfDate(network->status())) return;
  const VdmOpenUpgrade upgrade(network);
  network->evaluateVariablesFrom(id, /*callback=*/nullptr);
}

}  // namespace vdmu
