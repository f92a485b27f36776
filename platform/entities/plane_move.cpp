// Planar entities: their frame, and how a transform moves it.
#include "platform/entities/plane_move.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/ge/finite.h"

namespace {

constexpr double kSimilar = 1e-8;

OdGeVector3d movedNormal(const OdGeMatrix3d& transform, const OdDbPlaneFrame& frame) {
  const OdGeVector3d across = (transform * frame.xAxis()).crossProduct(transform * frame.yAxis());
  return across / std::copysign(across.length(), transform.det());
}

template <class Point, class Move>
bool moveAll(OdArray<Point>& points, const Move& move) {
  OdArray<Point> moved;
  moved.reserve(points.size());
  for (const Point& point : std::as_const(points)) {
    moved.append(move(point));
    if (!odgeIsFinite(std::as_const(moved).last())) return false;
  }
  points = moved;
  return true;
}

}  // namespace

OdDbPlaneFrame::OdDbPlaneFrame(const OdGeVector3d& normal)
    : m_x(normal == OdGeVector3d::kZAxis ? OdGeVector3d::kXAxis : normal.perpVector()),
      m_y(normal.crossProduct(m_x)),
      m_normal(normal) {}

OdGeVector3d OdDbPlaneFrame::direction(double angle) const {
  return m_x * std::cos(angle) + m_y * std::sin(angle);
}

double OdDbPlaneFrame::angleOf(const OdGeVector3d& vector) const {
  return std::atan2(vector.dotProduct(m_y), vector.dotProduct(m_x));
}

bool oddbReadsUpsideDown(const OdGeVector3d& along, const OdGeVector3d& level,
                         const OdGeVector3d& normal) {
  constexpr double kLevel = 1e-9;
  const double right = along.dotProduct(level);
  const double up = along.dotProduct(normal.crossProduct(level));
  return right < -kLevel || (right <= kLevel && up < 0.0);
}

OdDbPlaneMove::OdDbPlaneMove(const OdGeMatrix3d& transform, const OdGeVector3d& normal)
    : m_transform(transform),
      m_from(normal),
      m_to(movedNormal(transform, m_from)),
      m_flips(transform.det() < 0.0) {
  const OdGeVector3d x = transform * m_from.xAxis();
  const OdGeVector3d y = transform * m_from.yAxis();
  const double longer = std::max(x.length(), y.length());
  m_isSimilar = std::abs(x.length() - y.length()) <= kSimilar * longer &&
                std::abs(x.dotProduct(y)) <= kSimilar * longer * longer;
  m_scale = std::sqrt(x.crossProduct(y).length());
  const OdGeVector3d depth = transform * normal;
  m_depthScale = depth.dotProduct(m_to.normal());
  m_keepsDepth = (depth - m_to.normal() * m_depthScale).length() <= kSimilar * depth.length();
}

OdGeVector3d OdDbPlaneMove::reading(const OdGeVector3d& along) const {
  const OdGeVector3d moved = m_transform * along;
  const OdGeVector3d image = moved / moved.length();
  const auto isUpsideDown = [](const OdGeVector3d& text, const OdDbPlaneFrame& frame) {
    return oddbReadsUpsideDown(text, frame.xAxis(), frame.normal());
  };
  return m_flips && isUpsideDown(image, m_to) != isUpsideDown(along, m_from) ? -image : image;
}

bool OdDbPlaneMove::isFinite() const {
  return odgeIsFinite(m_transform) && odgeIsFinite(m_to.normal()) && std::isfinite(m_scale);
}

bool OdDbPlaneMove::movePoints(OdArray<OdGePoint2d>& points, double elevation) const {
  return moveAll(points, [&](const OdGePoint2d& at) { return point(at, elevation); });
}

bool oddbTransformPoints(const OdGeMatrix3d& transform, OdArray<OdGePoint3d>& points) {
  return moveAll(points, [&](const OdGePoint3d& point) { return transform * point; });
}
