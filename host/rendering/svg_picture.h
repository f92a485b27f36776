// SVG pictures.
#pragma once

#include <string>

#include "host/rendering/render.h"
#include "host/rendering/scene.h"

namespace rendering {

[[nodiscard]] std::string encodeSvg(const Scene& scene, const RenderOptions& options);

}  // namespace rendering
