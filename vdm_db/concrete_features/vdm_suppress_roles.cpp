// What suppress features know about variables.
#include "vdm_db/concrete_features/vdm_suppress_roles.h"

#include "platform/assoc/assoc_variable.h"
#include "platform/db/database.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

namespace {

/// Asks the features of the model space, whichever block has the variable.
bool isSuppression(const OdDbAssocVariable* variable) {
  const OdDbObjectId id = variable->objectId();
  if (id.database() == nullptr) return false;
  const auto manager =
      VdmDbFeatureManager::getInstance(id.database()->getModelSpaceId(), /*create=*/false)
          .openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return false;
  for (const OdDbObjectId& carrier : manager->getFeatures({VdmSuppressFeature::desc()})) {
    const auto feature = carrier.openAs<VdmSuppressFeature>();
    if (!feature.isNull() && feature->variableId() == id) return true;
  }
  return false;
}

}  // namespace

void vdmAddSuppressRoles(VdmVariableRoles& roles) { roles.isSuppression = &isSuppression; }
