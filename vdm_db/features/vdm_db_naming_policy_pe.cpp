// Names of new features.
#include "vdm_db/features/vdm_db_naming_policy_pe.h"

#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_naming_service.h"

OD_RX_DEFINE_ABSTRACT(VdmDbNamingPolicyPE, OdRxObject, L"VdmDbNamingPolicyPE")

namespace {
constexpr const wchar_t* kFirstNumber = L"_1";
}

OdString VdmDbNamingPolicyPE::generateFeatureName(VdmDbFeatureManager* manager, OdRxClass* cls,
                                                  const OdString& name, bool numberGiven,
                                                  bool trim) {
  OdString result = name;
  if (manager == nullptr) return result;
  if (result.isEmpty()) {
    result = baseName(cls);
    if (trim) result.trimRight();
    result += kFirstNumber;
  } else if (numberGiven) {
    result += kFirstNumber;
  }
  manager->namingService().makeNameUnique(result);
  return result;
}
