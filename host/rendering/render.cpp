// Pictures of drawings: PNG, SVG, and GLB models.
#include "host/rendering/render.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <functional>
#include <iterator>
#include <new>

#include "host/rendering/glb_model.h"
#include "host/rendering/png_picture.h"
#include "host/rendering/scene.h"
#include "host/rendering/svg_picture.h"
#include "host/rendering/whole_file.h"
#include "platform/base/error.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/units.h"
#include "platform/ge/finite.h"

namespace rendering {

namespace {

constexpr int kSmallestSide = 16;
constexpr int kLargestSide = 8192;
constexpr double kMetresWithoutUnits = 0.001;

std::string badOption(const RenderOptions& options) {
  for (const int side : {options.width, options.height}) {
    if (side >= kSmallestSide && side <= kLargestSide) continue;
    return "picture of " + std::to_string(options.width) + " by " + std::to_string(options.height) +
           " pixels: a side has " + std::to_string(kSmallestSide) + " to " +
           std::to_string(kLargestSide);
  }
  const double length = options.viewDirection.length();
  if (!(std::isfinite(length) && length > 0.0)) return "the view direction has no length";
  if (!(std::isfinite(options.deviation) && options.deviation >= 0.0)) {
    return "deviation " + std::to_string(options.deviation) + " is less than 0 or no number";
  }
  for (const RenderLabel& label : options.labels) {
    if (!odgeIsFinite(label.anchor)) {
      return "the anchor of label '" + label.text + "' is not finite";
    }
  }
  return {};
}

std::string blockName(const OdDbDatabase& database, const OdDbObjectId& block) {
  const OdDbObjectId id = block.isNull() ? database.getModelSpaceId() : block;
  const OdDbBlockTableRecordPtr record = id.openAs<OdDbBlockTableRecord>();
  return record.isNull() ? std::string("?") : std::string(record->getName().utf8());
}

using Encoder = std::function<std::string(const Scene&)>;

// Draws, encodes and writes; failures of all three come out as text.
std::string render(OdDbDatabase& database, const std::string& path, const RenderOptions& options,
                   const Encoder& encode) {
  if (std::string bad = badOption(options); !bad.empty()) return bad;
  try {
    const Scene scene = drawScene(database, options.block, options.deviation);
    if (options.warnings) {
      options.warnings->insert(options.warnings->end(), scene.warnings.begin(),
                               scene.warnings.end());
    }
    if (scene.instances.empty()) {
      return "there is nothing to draw in block '" + blockName(database, options.block) + "'";
    }
    return writeWholeFile(path, encode(scene));
  } catch (const OdError& error) {
    return error.what();
  } catch (const std::bad_alloc&) {
    return "picture '" + path + "': out of memory";
  }
}

}  // namespace

std::string renderPng(OdDbDatabase& database, const std::string& path,
                      const RenderOptions& options) {
  return render(database, path, options,
                [&](const Scene& scene) { return encodePng(scene, options); });
}

std::string renderSvg(OdDbDatabase& database, const std::string& path,
                      const RenderOptions& options) {
  return render(database, path, options,
                [&](const Scene& scene) { return encodeSvg(scene, options); });
}

std::string renderGlb(OdDbDatabase& database, const std::string& path,
                      const RenderOptions& options) {
  const double metres = oddbMetresPerUnit(database.getINSUNITS());
  return render(database, path, options, [&](const Scene& scene) {
    return encodeGlb(scene, metres > 0.0 ? metres : kMetresWithoutUnits);
  });
}

Renderer rendererFor(const std::string& path) {
  struct Format {
    const char* extension;
    Renderer renderer;
  };
  static constexpr Format kFormats[] = {
      {".png", renderPng}, {".svg", renderSvg}, {".glb", renderGlb}};
  std::string extension = std::filesystem::path(path).extension().string();
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto* const format = std::ranges::find(kFormats, extension, &Format::extension);
  return format == std::end(kFormats) ? nullptr : format->renderer;
}

std::string renderFile(OdDbDatabase& database, const std::string& path,
                       const RenderOptions& options) {
  const Renderer renderer = rendererFor(path);
  if (renderer != nullptr) return renderer(database, path, options);
  return "picture '" + path + "' ends in none of .png, .svg and .glb";
}

}  // namespace rendering
