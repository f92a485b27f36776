// Constraints: the variable that carries name and value.
#include "platform/assoc/assoc_variable.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/constraints/vdm_db_variable_reactor.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

OdDbObjectId VdmConstraint::userVariable() const {
  OdDbObjectId variable;
  m_properties.getProperty(kVdmAssocVar, variable);
  return variable;
}

OdString VdmConstraint::userExpression() const {
  const auto variable = userVariable().openAs<OdDbAssocVariable>();
  return variable.isNull() ? OdString() : variable->expression();
}

// ---- Name

OdString VdmConstraint::name() const {
  const auto variable = userVariable().openAs<OdDbAssocVariable>();
  return variable.isNull() ? m_name : variable->name();
}

OdResult VdmConstraint::setName(const OdString& name, OdString* errorMessage) {
  if (const auto variable = userVariable().openAs<OdDbAssocVariable>(); !variable.isNull()) {
    const VdmOpenUpgrade upgrade(variable);
    return variable->setName(name, /*updateReferencingExpressions=*/true, errorMessage);
  }
  signalModification(kBeforeModify);
  m_name = name;
  signalModification(kAfterModify);
  return eOk;
}

// ---- Making the variable

OdDbObjectId VdmConstraint::createVariable() {
  if (m_name.isEmpty() || !isParametric()) return OdDbObjectId::kNull;
  if (!userVariable().openAs<OdDbAssocVariable>().isNull()) return OdDbObjectId::kNull;
  const auto manager = m_owner.openAs<VdmDbConstraintManager>();
  if (manager.isNull()) return OdDbObjectId::kNull;
  const OdDbObjectId block = manager->blockId();
  // Another variable of the name stays what it is.
  const OdDbObjectId made =
      vdmu::getAssocVariable(block, vdmu::generateVariableName(block, m_name), /*create=*/true,
                             vdmu::getConstExpression(m_userValue));
  const auto variable = made.openAs<OdDbAssocVariable>();
  if (variable.isNull()) return OdDbObjectId::kNull;
  change([&] {
    m_name = OdString();
    m_userValue = vdmu::getValueAsDouble(variable.get());
    m_properties.removeProperty(kVdmAssocVar);
    m_properties.setProperty(kVdmAssocVar, made, OdDb::kSoftPointerRef);
  });
  return made;
}

VdmConstraint* VdmConstraint::getDimConstraint(const OdDbAssocVariable* variable) {
  if (variable == nullptr) return nullptr;
  for (const OdDbObjectId& id : variable->getPersistentReactors()) {
    if (!vdmu::isIdOf<VdmDbVariableReactor>(id) || id.isErased()) continue;
    const auto manager = id.ownerId().openAs<VdmDbConstraintManager>();
    if (!manager.isNull()) return manager->getDimConstraint(variable->objectId());
  }
  return nullptr;
}
