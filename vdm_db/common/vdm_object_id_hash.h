// Hash of object ids for containers whose order may show in results.
#pragma once

#include <cstddef>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"

namespace vdmu {

/// 64-bit FNV-1a over the stable form of an id: the 8 bytes of its handle, low byte first. The same
/// drawing gives the same hashes in every run, and an id and its redirected form hash alike. A null
/// id hashes as handle 0. Ids of different drawings may share a hash; `==` separates them.
struct OdDbObjectIdHash {
  std::size_t operator()(OdDbObjectId id) const noexcept {
    id.convertToRedirectedId();
    OdUInt64 handle = id.getHandle();
    OdUInt64 hash = 14695981039346656037ULL;
    for (int byte = 0; byte < 8; ++byte, handle >>= 8) {
      hash = (hash ^ (handle & 0xFFU)) * 1099511628211ULL;
    }
    return hash;
  }
};

}  // namespace vdmu
