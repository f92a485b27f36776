// Parallel projection of a scene onto a picture.
#pragma once

#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

namespace rendering {

struct Scene;

/// A point of the picture: pixels right and down from its upper left corner, and the distance
/// towards the eye in drawing units.
struct PicturePoint {
  double x = 0.0;
  double y = 0.0;
  double depth = 0.0;
};

/// A part of the picture, in pixels.
struct PictureArea {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
};

class Camera {
 public:
  /// Looks against `viewDirection`, which is not 0, with Z up. One pixel per drawing unit and the
  /// world's origin in the corner, until it is fitted.
  explicit Camera(const OdGeVector3d& viewDirection);

  /// Shows the scene as large as it fits into the middle of the area. A scene without size gets
  /// one unit across.
  void fit(const Scene& scene, const PictureArea& area);

  [[nodiscard]] PicturePoint project(const OdGePoint3d& point) const {
    const OdGeVector3d v = point.asVector();
    return {m_left + m_right.dotProduct(v) * m_scale, m_top - m_up.dotProduct(v) * m_scale,
            m_toEye.dotProduct(v) - m_depth};
  }
  /// Pixels per drawing unit.
  [[nodiscard]] double scale() const { return m_scale; }
  [[nodiscard]] const OdGeVector3d& right() const { return m_right; }
  [[nodiscard]] const OdGeVector3d& up() const { return m_up; }
  [[nodiscard]] const OdGeVector3d& toEye() const { return m_toEye; }

 private:
  OdGeVector3d m_right;
  OdGeVector3d m_up;
  OdGeVector3d m_toEye;
  double m_scale = 1.0;
  double m_left = 0.0;
  double m_top = 0.0;
  double m_depth = 0.0;  // of the middle of the scene, so that depths are small numbers
};

/// The box of the projected scene.
[[nodiscard]] PictureArea projectedArea(const Scene& scene, const Camera& camera);

}  // namespace rendering
