// State of persistent id managers.
#include "vdm_db/model/vdm_db_pers_id_manager_impl.h"

namespace {

constexpr int kBagVersion = 1;
constexpr const wchar_t* kDependenciesKey = L"deps";

}  // namespace

VdmDbPersIdManagerImpl::VdmDbPersIdManagerImpl() {
  m_properties.setConfig(VdmProperties::kDropErasedIds);
  m_properties.setVersion(kBagVersion);
  m_properties.mapProperty(kDependenciesKey, &dependencies.array(), OdDb::kHardOwnershipRef);
}
