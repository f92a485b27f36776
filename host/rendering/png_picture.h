// PNG pictures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/rendering/render.h"
#include "host/rendering/scene.h"

namespace rendering {

/// The bytes of the file. Raises OdError eOutOfMemory when the encoder gives up.
[[nodiscard]] std::string encodePng(const Scene& scene, const RenderOptions& options);

/// Rows of red, green and blue bytes, from the top.
struct PixelPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};
/// The bytes of the file, likewise.
[[nodiscard]] std::string encodePixels(const PixelPicture& picture);
/// Reads a file; raises OdError with the path when it is no PNG picture.
[[nodiscard]] PixelPicture readPng(const std::string& path);

}  // namespace rendering
