// The texts of the module's constants.
#include "vdm_db/common/vdm_constants.h"

#define VDM_CONSTANT(name, text) const OdString name(text);
#include "vdm_db/common/vdm_constant_rows.inc"
#undef VDM_CONSTANT
