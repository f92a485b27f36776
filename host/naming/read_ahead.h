// Fetching objects ahead of the moment they are opened.
#pragma once

#include <span>

#include "platform/filer/object_id.h"

namespace vdm_host {

/// Asks the processor for the objects that are in memory. A walk over objects that lie anywhere
/// waits for one after the other, while their memory can be fetched at once. Changes nothing and
/// loads nothing.
inline void readAhead(std::span<const OdDbObjectId> ids) {
  constexpr std::size_t kLine = 64;     // bytes
  constexpr std::size_t kObject = 192;  // bytes of a dependency, and what was allocated with it
  for (const OdDbObjectId& id : ids) {
    if (!id.isResident()) continue;
    const auto* object = reinterpret_cast<const char*>(id.idRecord()->object);
    for (std::size_t at = 0; at < kObject; at += kLine) __builtin_prefetch(object + at);
  }
}

}  // namespace vdm_host
