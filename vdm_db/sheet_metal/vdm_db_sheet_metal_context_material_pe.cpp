// The run-time class of extensions for sheet materials.
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_material_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbSheetMetalContextMaterialPE, OdRxObject,
                      L"VdmDbSheetMetalContextMaterialPE")
