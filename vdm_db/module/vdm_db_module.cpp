// Start and end of the module, and its entry points.
#include "vdm_db/module/vdm_db_module.h"

#include "platform/db/class_map.h"
#include "vdm_db/module/vdm_class_table.h"

namespace {
constexpr int kSolidType = 38;  // object type of solids
}

void VdmDbModule::initApp() {
  vdmRegisterClasses();
  OdRxOverrule::addOverrule(oddbDwgClassMapDesc(kSolidType), &m_solidDrawOverrule,
                            /*addAtLast=*/false);
}

void VdmDbModule::uninitApp() {
  vdmRequireReleasable();
  OdRxOverrule::removeOverrule(oddbDwgClassMapDesc(kSolidType), &m_solidDrawOverrule);
  vdmReleaseClasses();
}

ODRX_DEFINE_MODULE(VdmDbModule)
