// The host's module: brings naming and components to drawings in programs that load it.
#include "host/modeling/register_modeling.h"
#include "host/naming/pers_id_manager_pe.h"
#include "platform/rx/module.h"

/// Loaded after the module that holds the classes of references and features.
class VdmHostModule : public OdRxModule {
 public:
  void initApp() override {
    vdm_host::registerNaming();
    vdm_host::registerModeling();
  }
  void uninitApp() override {
    vdm_host::unregisterModeling();
    vdm_host::unregisterNaming();
  }
};

ODRX_DEFINE_MODULE(VdmHostModule)
