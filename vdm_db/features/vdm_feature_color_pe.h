// VdmFeatureColorPE: the colours of a feature class.
#pragma once

#include "platform/gi/entity_color.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

/// Colours of the references of a feature class. One object for all features of the class.
class VDM_DB_EXPORT VdmFeatureColorPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmFeatureColorPE)

  /// True when references with the mask have a colour of their own, which `color` then is.
  [[nodiscard]] virtual bool overrideColor(int mask, OdCmEntityColor& color) = 0;
};
