// GLB models (binary glTF 2.0).
#pragma once

#include <string>

#include "host/rendering/scene.h"

namespace rendering {

/// `metresPerUnit` turns drawing units into the metres of the format.
[[nodiscard]] std::string encodeGlb(const Scene& scene, double metresPerUnit);

}  // namespace rendering
