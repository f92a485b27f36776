// VdmUpdateHost: the host's side of an update.
#include "vdm_db/update/vdm_update_context.h"

VdmUpdateHost::~VdmUpdateHost() = default;
