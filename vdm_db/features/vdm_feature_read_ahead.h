// Fetching features into the processor's caches ahead of a walk over them.
#pragma once

#include <span>

#include "platform/filer/object_id.h"

/// What a look at a feature reads lies in a dozen places in memory, each of which is known only
/// once the one before has been read: a walk over many features waits for memory a dozen times at
/// each. This reads the first place of all the features of a portion, then the second of all, and
/// so on: the places of one step do not depend on each other, and the processor waits for many of
/// them at the same time.
///
/// Nothing is opened, loaded or changed; what is not in memory is left out. Asking for memory that
/// lies beyond an object has no effect but on the caches.
class VdmFeatureReadAhead {
 public:
  static constexpr OdUInt32 kPortion = 32;
  /// Of carriers, at most kPortion.
  static void read(std::span<const OdDbObjectId> carriers);
};
