// VdmDbISettings: the defaults of a program for new sheet-metal contexts.
#pragma once

#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "platform/rx/smart_ptr.h"
#include "vdm_db/common/vdm_db_export.h"

/// Protocol extension of OdDbDatabase: a getter for each row of vdm_db_isettings_rows.inc. A host
/// derives from it, or from VdmDbDefaultSettings, and attaches an object of its class at start.
class VDM_DB_EXPORT VdmDbISettings : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbISettings)

#define VDM_SETTING(Kind, getter, fallback) [[nodiscard]] virtual Kind getter() const = 0;
#include "vdm_db/sheet_metal/vdm_db_isettings_rows.inc"
#undef VDM_SETTING

  /// The settings that the host attached to the class of drawings; null without them.
  [[nodiscard]] static OdSmartPtr<VdmDbISettings> instance();
};
using VdmDbISettingsPtr = OdSmartPtr<VdmDbISettings>;
