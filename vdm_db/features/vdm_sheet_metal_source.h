// VdmSheetMetalSource: how the rest of the module looks into a sheet-metal context.
#pragma once

#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_properties.h"

/// Second base of the class of sheet-metal contexts, which is an OdDbObject. Keys of its bag:
/// "Thickness" a double, "ThicknessVar" the id of the variable that drives it,
/// "BendRadius" a double and "BendRadiusType" an int.
class VDM_DB_EXPORT VdmSheetMetalSource {
 public:
  virtual ~VdmSheetMetalSource();
  [[nodiscard]] virtual const VdmProperties& sheetMetalProperties() const = 0;
};

namespace vdmu {

/// Variables that drive the context; empty when it does not open.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray sheetMetalVariables(const OdDbObjectId& context);
/// Whether thickness and absolute bend radius of the two are the same within 1e-10; a context that
/// does not open has none.
[[nodiscard]] VDM_DB_EXPORT bool isSameSheetMetal(const OdDbObjectId& a, const OdDbObjectId& b);

}  // namespace vdmu
