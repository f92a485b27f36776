// The kind of a component: what features of its inserts are named after.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// "Hole", "Counterbore", "Slot", "Boss" for built-in components, the block's name for others;
/// empty when the block does not open.
[[nodiscard]] OdString componentKind(const OdDbObjectId& block);

}  // namespace vdm_host
