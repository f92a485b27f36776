// The module for the time of a test.
#include "tests/support/module_testing.h"

VdmModule::VdmModule() : LoadedModule(OdString(VDM_MODULE_FILE)) {}
