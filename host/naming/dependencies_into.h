// The dependencies that lead into an entity.
#pragma once

#include "platform/filer/object_id.h"

namespace vdm_host {

/// The dependencies that lead into an entity, those of constraints among them. In order of handles
/// when the entity is seen through block references.
[[nodiscard]] OdDbObjectIdArray dependenciesInto(const OdDbObjectId& entity);

}  // namespace vdm_host
