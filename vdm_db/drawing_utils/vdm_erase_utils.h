// Erasing objects by their ids.
#pragma once

#include "platform/db/db_object.h"

namespace vdmu {

/// Erases the object; nothing happens when it does not open for write, as when it is null, erased
/// or open elsewhere.
inline void eraseObject(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject(OdDb::kForWrite);
  if (!object.isNull()) object->erase();
}

/// The same for each, in order.
inline void eraseObjects(const OdDbObjectIdArray& ids) {
  for (const OdDbObjectId& id : ids) eraseObject(id);
}

}  // namespace vdmu
