// The run-time class of extensions of sheet-metal contexts.
#include "vdm_db/features/vdm_db_sheet_metal_context_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbSheetMetalContextPE, OdRxObject, L"VdmDbSheetMetalContextPE")
