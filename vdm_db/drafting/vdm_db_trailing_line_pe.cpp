// The run-time class of extensions for trailing lines.
#include "vdm_db/drafting/vdm_db_trailing_line_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmDbTrailingLinePE, OdRxObject, L"VdmDbTrailingLinePE")
