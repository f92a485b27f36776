// The union of bodies that lie apart from each other.
#pragma once

#include <memory>
#include <span>

#include "platform/modeler_occt/occt_body.h"

namespace od_occt {

/// The inputs side by side, each as it is, when all are solids and no two of their boxes meet: that
/// is their union. Faces, edges and vertices stand in the order of the inputs. Null otherwise, for
/// inputs whose faces wait for being joined, and where the outcome is not plainly sound. Without
/// attributes.
[[nodiscard]] std::shared_ptr<const Body> uniteApart(std::span<const OdModelerBodyPtr> inputs);

}  // namespace od_occt
