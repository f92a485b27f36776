// VdmUpdateHost: the host's side of an update.
#include "vdm_db/update/vdm_update_context.h"

VdmUpdateHost::~VdmUpdateHost() = default;

std::optional<std::size_t> VdmUpdateHost::numChangedEntities() const { return {}; }
OdDbObjectId VdmUpdateHost::changedEntity(std::size_t /*number*/) const { return {}; }
