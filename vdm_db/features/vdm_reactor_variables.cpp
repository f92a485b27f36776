// What the reactors of features do with variables.
#include "vdm_db/features/vdm_reactor_variables.h"

#include "platform/assoc/assoc_variable.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace {

constexpr double kSameNumber = 1e-10;

}  // namespace

bool vdmIsOtherNumber(double a, double b) { return a - b > kSameNumber || a - b < -kSameNumber; }

void vdmDetachFromVariable(const OdDbObjectId& id, std::initializer_list<OdDbObjectId> reactors) {
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return;
  for (const OdDbObjectId& reactor : reactors) variable->removePersistentReactor(reactor);
}

void vdmRemoveVariable(const OdDbObjectId& id) {
  OdString text;
  if (vdmAskRole(VdmVariableRoles::installed().hasStringValue, id, text)) return;
  {
    const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
    if (variable.isNull()) return;
    variable->removeAllDependencies(/*alsoErase=*/true);
  }
  vdmu::removeVariable(id);
}
