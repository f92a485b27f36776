// Parallel projection of a scene onto a picture.
#include "host/rendering/camera.h"

#include <algorithm>
#include <limits>

#include "host/rendering/scene.h"

namespace rendering {

namespace {

constexpr double kAlongZ = 1e-9;  // relative: the sine of the angle between view and Z

OdGeVector3d upFor(const OdGeVector3d& toEye) {
  const bool alongZ = toEye.crossProduct(OdGeVector3d::kZAxis).length() < kAlongZ;
  return alongZ ? OdGeVector3d::kYAxis : OdGeVector3d::kZAxis;
}

}  // namespace

Camera::Camera(const OdGeVector3d& viewDirection) : m_toEye(viewDirection.normal()) {
  m_right = upFor(m_toEye).crossProduct(m_toEye).normal();
  m_up = m_toEye.crossProduct(m_right);
}

PictureArea projectedArea(const Scene& scene, const Camera& camera) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  PictureArea area{kFar, kFar, -kFar, -kFar};
  const auto add = [&](const OdGePoint3d& point) {
    const PicturePoint at = camera.project(point);
    area.left = std::min(area.left, at.x);
    area.right = std::max(area.right, at.x);
    area.top = std::min(area.top, at.y);
    area.bottom = std::max(area.bottom, at.y);
  };
  for (const Instance& instance : scene.instances) {
    const Shape& shape = scene.shapes[instance.shape];
    for (const Surface& surface : shape.surfaces) {
      for (const OdGePoint3d& point : surface.points) add(instance.toWorld * point);
    }
    for (const Line& line : shape.lines) {
      for (const OdGePoint3d& point : line.points) add(instance.toWorld * point);
    }
  }
  return area;
}

void Camera::fit(const Scene& scene, const PictureArea& area) {
  m_scale = 1.0;
  m_left = m_top = m_depth = 0.0;
  const PictureArea now = projectedArea(scene, *this);
  const OdGeExtents3d box = scene.extents();
  const OdGeVector3d diagonal = box.maxPoint() - box.minPoint();
  m_depth = project(box.minPoint() + diagonal / 2).depth;
  const double width = now.right - now.left;
  const double height = now.bottom - now.top;
  const double whole = std::max(width, height) > 0.0 ? std::max(width, height) : 1.0;
  m_scale = std::min((area.right - area.left) / std::max(width, whole * 1e-6),
                     (area.bottom - area.top) / std::max(height, whole * 1e-6));
  m_left = (area.left + area.right - (now.left + now.right) * m_scale) / 2;
  m_top = (area.top + area.bottom - (now.top + now.bottom) * m_scale) / 2;
}

}  // namespace rendering
