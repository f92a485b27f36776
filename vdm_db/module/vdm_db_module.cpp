// Start and end of the module, and its entry points.
#include "vdm_db/module/vdm_db_module.h"

#include "vdm_db/module/vdm_class_table.h"

void VdmDbModule::initApp() { vdmRegisterClasses(); }

void VdmDbModule::uninitApp() { vdmReleaseClasses(); }

ODRX_DEFINE_MODULE(VdmDbModule)
