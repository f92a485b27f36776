// The host's mode of copying parameters, for a scope.
#include "vdm_db/drawing_utils/vdm_parameter_copy_mode.h"

#include "platform/db/database.h"
#include "platform/db/host_app_services.h"

namespace {
constexpr OdInt16 kCopyParametersWithBlock = 3;
}

namespace vdmu {

VdmParameterCopyModeElevate::VdmParameterCopyModeElevate(OdDbDatabase* database)
    : m_database(database) {
  if (m_database == nullptr) return;
  m_previous = m_database->appServices()->parameterCopyMode();
  m_database->appServices()->setParameterCopyMode(kCopyParametersWithBlock);
}

VdmParameterCopyModeElevate::~VdmParameterCopyModeElevate() {
  if (m_database != nullptr) m_database->appServices()->setParameterCopyMode(m_previous);
}

}  // namespace vdmu
