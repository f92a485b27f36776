// VdmDbSheetMetalContextExternalPE: protocols of other modules on sheet-metal contexts.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbSheetMetalContext;

/// Attached to a class, for hosts among themselves: the module does not call it and does not
/// register it. A host that uses it calls rxInit() and rxUninit() of the class.
class VDM_DB_EXPORT VdmDbSheetMetalContextExternalPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbSheetMetalContextExternalPE)

  /// The object of the asked class for a context; null when there is none.
  [[nodiscard]] virtual OdRxObjectPtr queryContext(const VdmDbSheetMetalContext* context) = 0;

  /// The extension of the class or of the nearest class above it; null without one, for null, and
  /// while no host has registered this class.
  [[nodiscard]] static OdSmartPtr<VdmDbSheetMetalContextExternalPE> getFrom(const OdRxClass* cls);
};
