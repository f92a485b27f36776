// Classes of objects by their ids, which opens nothing.
#pragma once

#include "platform/filer/object_id.h"
#include "platform/rx/rx_class.h"

namespace vdmu {

/// Whether the object of the id is of the class or derives from it. False for null and for an id
/// whose class is not known. An erased object still has its class.
[[nodiscard]] inline bool isIdOf(const OdDbObjectId& id, const OdRxClass* cls) {
  const OdRxClass* own = id.objectClass();
  return own != nullptr && own->isDerivedFrom(cls);
}
template <class T>
[[nodiscard]] bool isIdOf(const OdDbObjectId& id) {
  return isIdOf(id, T::desc());
}

}  // namespace vdmu
