// VdmDbModule: the loadable module, which registers the classes of this library.
#pragma once

#include "platform/rx/module.h"
#include "vdm_db/feature_display/vdm_db_3d_solid_draw_overrule.h"

/// One object in the process, made by the entry point odrxCreateModuleObject. Objects of the
/// module's classes can be made between initApp and uninitApp.
class VdmDbModule : public OdRxModule {
 public:
  /// Registers the classes in the order of their table, and then the draw overrule for solids, in
  /// front of others; without a class of solids that is left out. What a registration raises passes
  /// through, and those made before it are released.
  void initApp() override;
  /// Removes the overrule, then releases the classes in the reverse order.
  void uninitApp() override;

 private:
  OdStaticRxObject<VdmDb3dSolidDrawOverrule> m_solidDrawOverrule;
};
