// VdmDbDefaultSettings: settings that a program keeps as plain values.
#pragma once

#include "vdm_db/sheet_metal/vdm_db_isettings.h"

/// The values of vdm_db_isettings_rows.inc, which a program may change at any time. New contexts
/// take over what they are then.
class VdmDbDefaultSettings : public VdmDbISettings {
 public:
  struct Values {
#define VDM_SETTING(Kind, getter, fallback) Kind getter = fallback;
#include "vdm_db/sheet_metal/vdm_db_isettings_rows.inc"
#undef VDM_SETTING
  };
  Values values;

#define VDM_SETTING(Kind, getter, fallback) \
  [[nodiscard]] Kind getter() const override { return values.getter; }
#include "vdm_db/sheet_metal/vdm_db_isettings_rows.inc"
#undef VDM_SETTING
};
