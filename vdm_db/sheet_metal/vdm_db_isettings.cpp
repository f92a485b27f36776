// The run-time class of settings, and where they are found.
#include "vdm_db/sheet_metal/vdm_db_isettings.h"

#include "platform/db/database.h"

OD_RX_DEFINE_ABSTRACT(VdmDbISettings, OdRxObject, L"VdmDbISettings")

VdmDbISettingsPtr VdmDbISettings::instance() {
  return VdmDbISettings::cast(OdDbDatabase::desc()->getX(VdmDbISettings::desc()).get());
}
