// What constraints know about variables.
#include "vdm_db/constraints/vdm_constraint_roles.h"

#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace {

bool isLinear(const OdDbAssocVariable* variable) {
  const VdmConstraint* constraint = VdmConstraint::getDimConstraint(variable);
  return constraint != nullptr && constraint->isLinearDimension();
}

bool isAngular(const OdDbAssocVariable* variable) {
  const VdmConstraint* constraint = VdmConstraint::getDimConstraint(variable);
  return constraint != nullptr && constraint->isAngularDimension();
}

}  // namespace

void vdmAddConstraintRoles(VdmVariableRoles& roles) {
  roles.isLinearConstraint = &isLinear;
  roles.isAngularConstraint = &isAngular;
}
