// OdGiWorldGeometry: the primitives that drawables draw with.
#pragma once

#include <array>
#include <span>

#include "platform/base/non_copyable.h"
#include "platform/base/string.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"
#include "platform/gi/entity_color.h"
#include "platform/gi/selection_marker.h"

class OdGiDrawable;

/// Settings of single triangles of a shell; an empty span leaves them to the traits.
struct OdGiFaceData {
  std::span<const OdCmEntityColor> colors;
  std::span<const OdGsMarker> markers;
};

/// Triangles that share points, wound counter-clockwise seen from their front. The spans are read
/// during the call only.
struct OdGiShell {
  std::span<const OdGePoint3d> points;
  std::span<const OdGeVector3d> normals;  ///< unit, one per point; empty: flat triangles
  std::span<const std::array<OdUInt32, 3>> triangles;  ///< indices into points
  OdGiFaceData faces;                                  ///< one entry per triangle
};

/// One line of text. A point of the font (x along the base line, y up, capitals 1 high) is drawn at
/// `position + x * along + y * up`: the vectors carry height, width factor, slant and mirroring.
struct OdGiText {
  OdString text;
  OdGePoint3d position;  ///< where the base line begins
  OdGeVector3d along;
  OdGeVector3d up;
};

/// Points are in model coordinates: those of the block that is being drawn. A stack of transforms
/// leads from there to the world. Calls with too few points, and shells whose spans do not fit each
/// other or whose indices lie outside, raise eInvalidInput and draw nothing.
class OdGiWorldGeometry {
 public:
  virtual ~OdGiWorldGeometry() = default;

  /// What follows is in coordinates that `toOuter` takes to those before the call.
  virtual void pushModelTransform(const OdGeMatrix3d& toOuter) = 0;
  /// Raises eInvalidInput when nothing was pushed.
  virtual void popModelTransform() = 0;
  [[nodiscard]] virtual OdGeMatrix3d getModelToWorldTransform() const = 0;

  /// Two points or more.
  virtual void polyline(std::span<const OdGePoint3d> points) = 0;
  /// A closed plane outline of three points or more, filled as the traits say.
  virtual void polygon(std::span<const OdGePoint3d> points) = 0;
  virtual void shell(const OdGiShell& shell) = 0;
  /// By default polylines of the stroke font.
  virtual void text(const OdGiText& text);

  /// Draws a part with attributes of its own; those of the caller hold again afterwards.
  virtual void draw(const OdGiDrawable* drawable) = 0;

 protected:
  OdGiWorldGeometry() = default;
};

/// Guard of a pushed transform.
class OdGiModelTransformGuard : OdNonCopyable {
 public:
  OdGiModelTransformGuard(OdGiWorldGeometry& geometry, const OdGeMatrix3d& toOuter)
      : m_geometry(geometry) {
    m_geometry.pushModelTransform(toOuter);
  }
  ~OdGiModelTransformGuard() { m_geometry.popModelTransform(); }

 private:
  OdGiWorldGeometry& m_geometry;
};
