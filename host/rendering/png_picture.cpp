// PNG pictures. The only file that sees the PNG library.
#include "host/rendering/png_picture.h"

#include <png.h>

#include "host/rendering/view.h"
#include "platform/base/error.h"
#include "platform/gi/stroke_font.h"

namespace rendering {

namespace {

constexpr int kSamplesPerSide = 2;
// In pixels.
constexpr double kEdgeWidth = 1.2;
constexpr double kTextWidth = 1.3;
constexpr double kLeaderWidth = 1.0;
constexpr double kHaloWidth = 3.5;
constexpr double kDotSize = 5.0;
constexpr double kLeaderGap = 0.9;  // between leader and text, in halves of the text height

void drawText(Raster& raster, const PlacedLabel& label, double height, double width,
              const RenderColor& color) {
  for (const auto& stroke : odgiLayOutText(OdString(label.text)).strokes) {
    for (std::size_t i = 1; i < stroke.size(); ++i) {
      const OdGePoint2d& a = stroke[i - 1];
      const OdGePoint2d& b = stroke[i];
      raster.lineOnTop({label.textLeft + a.x * height, label.baseLine - a.y * height, 0.0},
                       {label.textLeft + b.x * height, label.baseLine - b.y * height, 0.0}, width,
                       color);
    }
  }
}

// The leader with its dot, as wide as asked.
void drawLeader(Raster& raster, const PlacedLabel& label, double middle, double width, double dot,
                const RenderColor& color) {
  const double gap = middle * kLeaderGap;
  const double textEnd = label.isLeft ? label.textRight + gap : label.textLeft - gap;
  const PicturePoint elbow{label.elbowX, label.baseLine - middle, 0.0};
  raster.lineOnTop(label.anchor, elbow, width, color);
  raster.lineOnTop(elbow, {textEnd, elbow.y, 0.0}, width, color);
  raster.dotOnTop(label.anchor, dot, color);
}

void drawLabels(Raster& raster, const View& view, const RenderColor& background) {
  const double middle = view.textHeight / 2;
  const double samples = view.factor;
  for (const PlacedLabel& label : view.labels) {
    drawLeader(raster, label, middle, kHaloWidth * samples, (kDotSize + 2) * samples, background);
  }
  for (const PlacedLabel& label : view.labels) {
    drawLeader(raster, label, middle, kLeaderWidth * samples, kDotSize * samples, label.color);
    drawText(raster, label, view.textHeight, kTextWidth * samples, label.color);
  }
}

}  // namespace

std::string encodePng(const Scene& scene, const RenderOptions& options) {
  const View view(scene, options, kSamplesPerSide);
  Raster raster = rasterise(scene, view, options, /*lightLevels=*/0);
  if (options.showEdges) raster.drawOutlines(view.outlineGap(), kEdgeColor);
  forEachLine(scene, view, options.showEdges,
              [&](const PicturePoint& from, const PicturePoint& to, const RenderColor& color) {
                raster.line(from, to, kEdgeWidth * view.factor, view.lineBias(), color);
              });
  drawLabels(raster, view, options.background);
  return encodePixels({options.width, options.height, raster.pixels(view.factor)});
}

std::string encodePixels(const PixelPicture& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = 0;
  const void* pixels = picture.pixels.data();
  const int rowStride = picture.width * 3;
  std::string bytes;
  if (png_image_write_to_memory(&image, nullptr, &size, 0, pixels, rowStride, nullptr) != 0) {
    bytes.resize(size);
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels, rowStride, nullptr) !=
        0) {
      bytes.resize(size);
      return bytes;
    }
  }
  throw OdError(eOutOfMemory,
                OdString("picture of " + std::to_string(picture.width) + " by " +
                         std::to_string(picture.height) + " pixels: " + image.message));
}

PixelPicture readPng(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  PixelPicture picture;
  if (png_image_begin_read_from_file(&image, path.c_str()) != 0) {
    image.format = PNG_FORMAT_RGB;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.pixels.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) != 0) {
      return picture;
    }
  }
  const std::string why = image.message;
  png_image_free(&image);
  throw OdError(OdString("picture '" + path + "': " + why));
}

}  // namespace rendering
