// VdmDbSheetMetalContextImpl: the state of a sheet-metal context. For its own sources.
#pragma once

#include <vector>

#include "vdm_db/properties/vdm_db_properties_base.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_options.h"

/// A bag of version 0, to which the fields of the options are mapped. "ThicknessVar", an id by soft
/// pointer, is in it while a variable drives the thickness.
class VdmDbSheetMetalContextImpl : public VdmDbPropertiesBase {
 public:
  VdmDbSheetMetalContextImpl();

  VdmSheetMetalContextThicknessOption thickness;
  VdmSheetMetalContextBendLineExtentOption bendLineExtent{thickness};
  VdmSheetMetalContextBendRadiusOption bendRadius{thickness};
  VdmSheetMetalContextHemOption hem{thickness};
  VdmSheetMetalContextJunctionOption junction{thickness};
  VdmSheetMetalContextLoftedBendOption loftedBend;
  VdmSheetMetalContextMiterOption miter{thickness};
  VdmSheetMetalContextReliefOption relief{thickness};
  VdmSheetMetalContextRibOption rib{thickness};
  VdmSheetMetalContextSharpBendRadiusLimitOption sharpBendRadiusLimit{thickness};
  VdmSheetMetalContextTabOption tab{thickness};
  VdmSheetMetalContextUnfoldingOption unfolding;
  /// All of them, in this order.
  const std::vector<VdmISheetMetalContextOption*> options;

  /// The id under "ThicknessVar", whatever became of the variable; null without one.
  [[nodiscard]] OdDbObjectId thicknessVariable() const;
};
