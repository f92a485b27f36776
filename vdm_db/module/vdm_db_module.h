// VdmDbModule: the loadable module, which registers the classes of this library.
#pragma once

#include "platform/rx/module.h"

// One object in the process, made by the entry point odrxCreateModuleObject. Objects of the
// module's classes can be made between initApp and uninitApp.
class VdmDbModule : public OdRxModule {
 public:
  // Registers the classes in the order of their table. What a registration raises passes through,
  // and those made before it are released.
  void initApp() override;
  // Releases them in the reverse order.
  void uninitApp() override;
};
