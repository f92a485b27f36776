// What the reactors of features do with variables.
#include "vdm_db/features/vdm_reactor_variables.h"

#include "platform/assoc/assoc_variable.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace {

constexpr double kSameNumber = 1e-10;

bool isUsed(const OdDbAssocVariable* variable) {
  for (const OdDbObjectId& reactor : variable->getPersistentReactors()) {
    if (vdmu::assocVariableReactorIsValid(reactor.openObject().get())) return true;
  }
  return false;
}

}  // namespace

bool vdmIsOtherNumber(double a, double b) { return a - b > kSameNumber || a - b < -kSameNumber; }

void vdmDetachFromVariable(const OdDbObjectId& id, std::initializer_list<OdDbObjectId> reactors) {
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return;
  for (const OdDbObjectId& reactor : reactors) variable->removePersistentReactor(reactor);
}

void vdmRemoveUnusedVariable(const OdDbObjectId& id) {
  {
    const auto variable = id.openAs<OdDbAssocVariable>();
    OdString text;
    if (variable.isNull() || isUsed(variable.get()) ||
        vdmAskRole(VdmVariableRoles::installed().hasStringValue, id, text)) {
      return;
    }
  }
  vdmu::removeVariable(id);
}
