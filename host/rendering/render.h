// Pictures of drawings: PNG, SVG, and GLB models.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/filer/object_id.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

class OdDbDatabase;

namespace rendering {

struct RenderColor {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend auto operator<=>(const RenderColor&, const RenderColor&) = default;
};

/// A text beside the model with a leader line to a point of it.
struct RenderLabel {
  OdGePoint3d anchor;  ///< world coordinates, drawing units
  std::string text;    ///< UTF-8, one line
  RenderColor color{};
};

struct RenderOptions {
  int width = 1280;  ///< pixels, 16 to 8192
  int height = 960;
  /// From the model to the eye, any length but 0; parallel projection. World Z points up; seen
  /// along Z, Y does.
  OdGeVector3d viewDirection{1.0, -1.0, 1.0};
  bool showEdges = true;
  RenderColor background{244, 245, 247};
  std::vector<RenderLabel> labels;  ///< not in GLB
  /// The block to draw; null is model space.
  OdDbObjectId block;
  /// Largest distance between curved surfaces and their facets, drawing units; 0: 1/1000 of each
  /// body's diagonal.
  double deviation = 0.0;
  /// Gets a line for each thing that could not be drawn; may be null.
  std::vector<std::string>* warnings = nullptr;
};

// Each draws the block through the drawing's own classes, overrules included, and writes one file:
// whole, or not at all; an old file stays whole on failure. Colours, layers and nested references
// are settled as a display would. The same drawing gives the same bytes. The result is empty, or
// says what went wrong.

/// Shaded surfaces with two lights, black edges and outlines, four samples a pixel.
[[nodiscard]] std::string renderPng(OdDbDatabase& database, const std::string& path,
                                    const RenderOptions& options = RenderOptions());
/// The same picture as filled outlines and lines; labels are text.
[[nodiscard]] std::string renderSvg(OdDbDatabase& database, const std::string& path,
                                    const RenderOptions& options = RenderOptions());
/// A binary glTF 2.0 model: a mesh per solid, a part of it per colour, a node per occurrence named
/// by the handles that lead to it. Metres, Y up; a drawing without units counts as millimetres.
[[nodiscard]] std::string renderGlb(OdDbDatabase& database, const std::string& path,
                                    const RenderOptions& options = RenderOptions());

using Renderer = std::string (*)(OdDbDatabase&, const std::string&, const RenderOptions&);
/// The one of these for the extension of a file's name, in either case; null when it is none of
/// .png, .svg and .glb.
[[nodiscard]] Renderer rendererFor(const std::string& path);
/// Calls that one; the result says so when there is none.
[[nodiscard]] std::string renderFile(OdDbDatabase& database, const std::string& path,
                                     const RenderOptions& options = RenderOptions());

}  // namespace rendering
