// PNG pictures.
#pragma once

#include <string>

#include "host/rendering/render.h"
#include "host/rendering/scene.h"

namespace rendering {

/// The bytes of the file. Raises OdError eOutOfMemory when the encoder gives up.
[[nodiscard]] std::string encodePng(const Scene& scene, const RenderOptions& options);

}  // namespace rendering
