// How messages name an object.
#pragma once

#include "platform/base/string.h"
#include "platform/filer/object_id.h"

namespace vdmu {

/// The handle in upper-case hexadecimal digits; "0" for a null id.
[[nodiscard]] inline OdString handleText(const OdDbObjectId& id) { return id.getHandle().ascii(); }

}  // namespace vdmu
