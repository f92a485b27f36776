// Planar entities: their frame, and how a transform moves it.
#pragma once

#include "platform/base/array.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"

/// Coordinates in the planes of a unit normal. Z is the normal, X and Y follow from it by the
/// arbitrary axis rule; the origin is that of the block, and the elevation of a plane is its signed
/// distance from there along the normal.
class OdDbPlaneFrame {
 public:
  explicit OdDbPlaneFrame(const OdGeVector3d& normal);

  [[nodiscard]] const OdGeVector3d& xAxis() const { return m_x; }
  [[nodiscard]] const OdGeVector3d& yAxis() const { return m_y; }
  [[nodiscard]] const OdGeVector3d& normal() const { return m_normal; }

  [[nodiscard]] OdGePoint3d toWorld(const OdGePoint2d& point, double elevation) const {
    return OdGePoint3d::kOrigin + m_x * point.x + m_y * point.y + m_normal * elevation;
  }
  [[nodiscard]] OdGePoint2d toPlane(const OdGePoint3d& point) const {
    return {point.asVector().dotProduct(m_x), point.asVector().dotProduct(m_y)};
  }
  [[nodiscard]] double elevationOf(const OdGePoint3d& point) const {
    return point.asVector().dotProduct(m_normal);
  }
  /// The unit vector at an angle from X, counter-clockwise about the normal; radians.
  [[nodiscard]] OdGeVector3d direction(double angle) const;
  /// The angle of a vector, -pi to pi; what the vector has along the normal does not count.
  [[nodiscard]] double angleOf(const OdGeVector3d& vector) const;

 private:
  OdGeVector3d m_x;
  OdGeVector3d m_y;
  OdGeVector3d m_normal;
};

/// Whether a text that runs along a unit vector is upside down for a reader who has `level`
/// to the right: it reads neither from below nor from the right. The tolerance, 1e-9, is far above
/// the rounding of unit vectors.
[[nodiscard]] bool oddbReadsUpsideDown(const OdGeVector3d& along, const OdGeVector3d& level,
                                       const OdGeVector3d& normal);

/// What an affine, regular transform does to the planes of a normal. The new normal lies on the
/// side to which the transform takes the old one, so a mirror image keeps what is in front in
/// front, and turns counter-clockwise into clockwise: it flips.
class OdDbPlaneMove {
 public:
  OdDbPlaneMove(const OdGeMatrix3d& transform, const OdGeVector3d& normal);

  [[nodiscard]] const OdDbPlaneFrame& from() const { return m_from; }
  [[nodiscard]] const OdDbPlaneFrame& to() const { return m_to; }
  [[nodiscard]] const OdGeVector3d& normal() const { return m_to.normal(); }
  /// Counter-clockwise becomes clockwise.
  [[nodiscard]] bool flips() const { return m_flips; }
  /// Circles stay circles: within the plane, lengths change by one factor and angles stay. The
  /// tolerance, 1e-8 of the longer axis, is far above the rounding of composed rotations.
  [[nodiscard]] bool isSimilar() const { return m_isSimilar; }
  /// Factor on lengths in the plane; the root of that on areas when the move is not similar.
  [[nodiscard]] double scale() const { return m_scale; }
  /// Factor on lengths along the normal.
  [[nodiscard]] double depthScale() const { return m_depthScale; }
  /// What a thickness draws stays across the planes; a shear may slant it.
  [[nodiscard]] bool takesThickness(double thickness) const {
    return thickness == 0.0 || m_keepsDepth;
  }
  [[nodiscard]] bool isFinite() const;

  [[nodiscard]] OdGePoint2d point(const OdGePoint2d& point, double elevation) const {
    return m_to.toPlane(m_transform * m_from.toWorld(point, elevation));
  }
  /// Moves points of a plane. False, and nothing changes, when one would not be finite.
  [[nodiscard]] bool movePoints(OdArray<OdGePoint2d>& points, double elevation) const;
  [[nodiscard]] double elevation(double elevation) const {
    return m_to.elevationOf(m_transform * m_from.toWorld({}, elevation));
  }
  /// The direction of an angle, as an angle of the new frame.
  [[nodiscard]] double angle(double angle) const {
    return m_to.angleOf(m_transform * m_from.direction(angle));
  }
  /// The unit direction of a text that stays readable: the image of its direction, or the opposite
  /// where the move flips and the text would turn upside down, or upright, in its plane.
  [[nodiscard]] OdGeVector3d reading(const OdGeVector3d& along) const;

 private:
  OdGeMatrix3d m_transform;
  OdDbPlaneFrame m_from;
  OdDbPlaneFrame m_to;
  double m_scale = 1.0;
  double m_depthScale = 1.0;
  bool m_flips = false;
  bool m_isSimilar = true;
  bool m_keepsDepth = true;
};

/// Transforms points. False, and nothing changes, when one would not be finite.
[[nodiscard]] bool oddbTransformPoints(const OdGeMatrix3d& transform, OdArray<OdGePoint3d>& points);
