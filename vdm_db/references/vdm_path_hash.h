// Hash of subentity paths for containers that live as long as their drawings.
#pragma once

#include <cstddef>
#include <functional>

#include "platform/db/subent.h"

/// Agrees with the paths' `==`: over the ids as they are and the subentity. Differs from run to
/// run.
struct VdmPathHash {
  std::size_t operator()(const OdDbFullSubentPath& path) const noexcept {
    constexpr std::size_t kFactor = 0x9E3779B97F4A7C15ULL;  // 2^64 over the golden ratio
    std::size_t hash = static_cast<std::size_t>(path.subentId().index()) * 4 +
                       static_cast<std::size_t>(path.subentId().type());
    for (const OdDbObjectId& id : path.objectIds()) {
      hash = (hash ^ std::hash<OdDbObjectId>()(id)) * kFactor;
      hash ^= hash >> 32;
    }
    return hash;
  }
};
