// What configurations know about variables.
#include "vdm_db/configurations/vdm_configuration_roles.h"

#include "platform/assoc/assoc_variable.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace {

bool hasStringValue(const OdDbObjectId& variable, OdString& text) {
  return VdmConfigurationFeature::evaluateStringValue(variable, text) == eOk;
}

bool isDrivingColumn(const OdDbObject* reactor) {
  const VdmDbConfigVarReactorPtr link = VdmDbConfigVarReactor::cast(reactor);
  return !link.isNull() && !link->isKey() && link->isEnabled();
}

}  // namespace

void vdmAddConfigurationRoles(VdmVariableRoles& roles) {
  roles.hasStringValue = &hasStringValue;
  roles.isStringTyped = &VdmConfigurationFeature::isStringType;
  roles.isDrivingColumn = &isDrivingColumn;
}
