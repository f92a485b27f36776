// What a block looks like, as triangles and lines.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/rendering/render.h"
#include "platform/ge/extents3d.h"
#include "platform/ge/matrix3d.h"
#include "platform/gi/selection_marker.h"

namespace rendering {

/// How a surface answers to light.
struct SurfaceLook {
  RenderColor color;
  double opacity = 1.0;    ///< 0 to 1
  double shininess = 0.3;  ///< 0 dull to 1 mirror

  friend auto operator<=>(const SurfaceLook&, const SurfaceLook&) = default;
};

/// Triangles of one look. `parts` holds for each triangle the number of its face in the shape.
struct Surface {
  SurfaceLook look;
  std::vector<OdGePoint3d> points;
  std::vector<OdGeVector3d> normals;  ///< unit, one per point
  std::vector<std::array<std::uint32_t, 3>> triangles;
  std::vector<std::uint32_t> parts;
};

struct Line {
  std::vector<OdGePoint3d> points;
  RenderColor color;
  bool isEdge = false;  ///< bounds faces; otherwise an entity of its own
};

/// One entity in the coordinates of its block.
struct Shape {
  std::string name;  ///< handle
  std::vector<Surface> surfaces;
  std::vector<Line> lines;

  /// Of all points; invalid for an empty shape.
  [[nodiscard]] OdGeExtents3d extents() const;
  [[nodiscard]] bool isEmpty() const { return surfaces.empty() && lines.empty(); }
};

/// An occurrence of a shape.
struct Instance {
  std::size_t shape = 0;
  OdGeMatrix3d toWorld;
  std::string name;  ///< handles from the outermost reference to the entity, with slashes
};

struct Scene {
  std::vector<Shape> shapes;
  std::vector<Instance> instances;
  std::vector<std::string> warnings;

  /// Around all points, in world coordinates, not tight; invalid for an empty scene.
  [[nodiscard]] OdGeExtents3d extents() const;
};

/// Draws a block through its drawable. Raises what the database raises; an entity that raises is
/// left out with a warning.
[[nodiscard]] Scene drawScene(OdDbDatabase& database, const OdDbObjectId& block, double deviation);

}  // namespace rendering
