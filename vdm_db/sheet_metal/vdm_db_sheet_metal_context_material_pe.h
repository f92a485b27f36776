// VdmDbSheetMetalContextMaterialPE: the sheet materials of a host.
#pragma once

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class VdmDbSheetMetalContext;

/// Protocol extension of the class of sheet-metal contexts, for hosts among themselves: the module
/// does not call it.
class VDM_DB_EXPORT VdmDbSheetMetalContextMaterialPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbSheetMetalContextMaterialPE)

  /// Names of the materials that the context can be given.
  virtual OdResult getMaterials(const VdmDbSheetMetalContext* context,
                                OdArray<OdString>& names) = 0;
  /// The material of the context; empty without one.
  virtual OdString getMaterial(const VdmDbSheetMetalContext* context) = 0;
  /// Gives the context a material and the options that go with it. The context is open for write.
  virtual OdResult setMaterial(VdmDbSheetMetalContext* context, const OdString& name) = 0;
};
