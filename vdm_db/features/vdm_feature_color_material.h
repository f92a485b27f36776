// The material that faces with a feature colour are drawn with.
#pragma once

#include "platform/filer/object_id.h"

namespace vdmu {

/// Made when it is missing, once, however many callers there are. Null for null.
OdDbObjectId createFeatureColorMaterial(OdDbDatabase* database);
/// The same without making it; null when there is none.
[[nodiscard]] OdDbObjectId findFeatureColorMaterial(OdDbDatabase* database);

}  // namespace vdmu
