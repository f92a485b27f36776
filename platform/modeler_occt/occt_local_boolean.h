// Booleans at the cost of the faces that they concern.
#pragma once

#include <memory>
#include <span>

#include "platform/modeler_occt/occt_operations.h"

namespace od_occt {

class Body;
struct LocalSplit;

/// What a local boolean made.
struct LocalResult {
  std::shared_ptr<const Body> body;  ///< without attributes
  OdModelerHistory history;          ///< empty where none was asked for
};

/// A boolean of a base, the first input, and tools, the others, out of their split. Faces, edges
/// and vertices that the operation does not change are the very same as the base's. The body, its
/// history and the faces that are joined are those of the operation on the whole bodies; faces
/// stand in the order of the base, each with what came of it, then those of the tools.
/// eNotApplicable, with the reason, where the operation must look at the whole bodies: nothing or
/// all is left of the base, it falls apart, or more changes than faces near the tools. May throw
/// what the modeller throws.
OdStatus booleanLocally(OdModelerBooleanKind kind, std::span<const OdModelerBodyPtr> inputs,
                        const LocalSplit& split, const Options& options, bool wantsHistory,
                        LocalResult& result);

}  // namespace od_occt
