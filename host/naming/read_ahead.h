// Fetching objects into the processor's caches ahead of a walk over them.
//
// The objects of a drawing lie anywhere in memory. A walk that opens one after the other waits for
// memory once for each object; when the memory of a portion of objects is asked for beforehand, the
// processor waits for many of them at the same time. bench/update (figures "brought up to date" and
// "resolved") shows what that gives.
//
// It is safe because it changes no state: nothing is loaded or opened, and a prefetch of any
// address, also of one beyond the end of an object, has no effect but on the caches.
#pragma once

#include <span>

#include "platform/db/db_object.h"
#include "platform/filer/object_id.h"

namespace vdm_host {

/// Asks for the memory of those objects that are resident.
inline void readAhead(std::span<const OdDbObjectId> ids) {
  constexpr std::size_t kLine = 64;     // bytes of a cache line
  constexpr std::size_t kObject = 192;  // bytes of a dependency, and what was allocated with it
  for (const OdDbObjectId& id : ids) {
    // The address alone is read, from the id's record, without opening the object.
    if (!id.isResident()) continue;
    const auto* object = reinterpret_cast<const char*>(id.idRecord()->object);
    for (std::size_t at = 0; at < kObject; at += kLine) __builtin_prefetch(object + at);
  }
}

/// Reads the object's list of reactors, which the end of a write open will notify, and drops the
/// answer: the list is in the caches when it is needed. The object is open for read.
inline void readReactorsAhead(const OdDbObject& object) {
  (void)object.hasPersistentReactor(object.objectId());
}

}  // namespace vdm_host
