// How a constraint manager hears of its variables.
#include "vdm_db/constraints/vdm_db_variable_reactor.h"

#include "platform/assoc/assoc_variable.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/parameters/vdm_variable_values.h"

VDM_DEFINE_DB_CLASS(VdmDbVariableReactor, OdDbObject, L"VdmVariableReactor", L"VDMVARIABLEREACTOR",
                    L"3D constraints data")

void VdmDbVariableReactor::modified(const OdDbObject* object) {
  if (isUndoing() || object->isUndoing()) return;
  const auto variable = OdDbAssocVariable::cast(object);
  const auto manager = ownerId().openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  if (manager.isNull() || variable.isNull()) return;
  manager->variableModified(variable->objectId(), vdmu::getValueAsDouble(variable.get()));
}

void VdmDbVariableReactor::erased(const OdDbObject* object, bool erasing) {
  if (!erasing || isUndoing() || object->isUndoing()) return;
  const auto manager = ownerId().openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  if (!manager.isNull()) manager->variableErased(object->objectId());
}

void VdmDbVariableReactor::copied(const OdDbObject* /*object*/, const OdDbObject* clone) {
  vdmu::detachReactor(*clone, objectId());
}
