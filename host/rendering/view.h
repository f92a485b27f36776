// A scene seen through a camera: what PNG and SVG pictures share.
#pragma once

#include <vector>

#include "host/rendering/camera.h"
#include "host/rendering/label_layout.h"
#include "host/rendering/raster.h"
#include "host/rendering/render.h"
#include "host/rendering/scene.h"

namespace rendering {

inline constexpr RenderColor kEdgeColor{24, 26, 30};

/// The camera is fitted to samples: `factor` of them on each side of a pixel.
struct View {
  Camera camera;
  std::vector<PlacedLabel> labels;  ///< in samples, as is the text height
  double textHeight = 0.0;
  int factor = 1;
  std::vector<bool> isSmall;  ///< by instance: too small on the picture for edges and outlines

  View(const Scene& scene, const RenderOptions& options, int samplesPerSide);

  /// A line that is farther than a surface by at most this depth counts as on it, drawing units.
  [[nodiscard]] double lineBias() const;
  /// Depth between surfaces from which on an outline parts them.
  [[nodiscard]] double outlineGap() const;
  /// Whether an edge is long enough on the picture to be drawn.
  [[nodiscard]] bool showsEdge(const Line& line, const OdGeMatrix3d& toWorld) const;

 private:
  [[nodiscard]] double sizeOf(const OdGeExtents3d& box, const OdGeMatrix3d& toWorld) const;
};

/// The surfaces of the scene, shaded by two lights that turn with the camera.
[[nodiscard]] Raster rasterise(const Scene& scene, const View& view, const RenderOptions& options,
                               int lightLevels);

/// Calls `draw(from, to, color)` for each piece of the scene's lines: entities of their own, and
/// edges where they are asked for and are large enough not to cover their faces.
template <class Draw>
void forEachLine(const Scene& scene, const View& view, bool withEdges, const Draw& draw) {
  for (std::size_t index = 0; index < scene.instances.size(); ++index) {
    const Instance& instance = scene.instances[index];
    for (const Line& line : scene.shapes[instance.shape].lines) {
      const bool isLeftOut = line.isEdge && (!withEdges || view.isSmall[index] ||
                                             !view.showsEdge(line, instance.toWorld));
      if (isLeftOut) continue;
      const RenderColor color = line.isEdge ? kEdgeColor : line.color;
      PicturePoint last = view.camera.project(instance.toWorld * line.points.front());
      for (std::size_t i = 1; i < line.points.size(); ++i) {
        const PicturePoint next = view.camera.project(instance.toWorld * line.points[i]);
        draw(last, next, color);
        last = next;
      }
    }
  }
}

}  // namespace rendering
