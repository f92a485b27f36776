// OdDbRoundCurve: what circles and arcs share.
#pragma once

#include "platform/entities/arc_chords.h"
#include "platform/entities/curve.h"
#include "platform/entities/planar.h"
#include "platform/entities/plane_move.h"

/// A circle or a part of one. Parameters are angles in radians, counter-clockwise about the normal
/// from the X axis of the frame that follows from it. Not a run-time class.
class OdDbRoundCurve : public OdDbThick<OdDbCurve> {
 public:
  /// In coordinates of the block, drawing units.
  [[nodiscard]] OdGePoint3d center() const;
  /// Raises eInvalidInput for a point that is not finite.
  void setCenter(const OdGePoint3d& center);
  [[nodiscard]] double radius() const;
  /// Raises eInvalidInput for a radius that is not positive and finite.
  void setRadius(double radius);

  [[nodiscard]] double length() const override;
  OdResult getGeomExtents(OdGeExtents3d& extents) const override;

 protected:
  /// eCannotScaleNonUniformly for a transform that makes ellipses of circles.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;
  /// An ellipse.
  [[nodiscard]] OdDbEntityPtr subMoreGeneral() const override;
  OdResult getRange(double& start, double& end) const override;
  [[nodiscard]] OdGePoint3d pointAt(double parameter) const override;
  void addChords(double deviation, std::vector<OdGePoint3d>& points) const override;
  [[nodiscard]] OdGeVector3d extrusion() const override { return m_normal * m_thickness; }

  /// Angle of the start, and the sweep to the end: above 0, at most a whole turn.
  [[nodiscard]] virtual double startOf() const = 0;
  [[nodiscard]] virtual double sweepOf() const = 0;
  /// Follows a transform of the plane; the default has no angles to turn.
  virtual void moveAngles(const OdDbPlaneMove& /*move*/) {}
  [[nodiscard]] OdDbArcShape shape() const;

  /// The stored fields of both.
  template <class Fields, class Self>
  static void roundFields(Fields& fields, Self& self) {
    fields.version(1);
    fields.value(10, self.m_center, oddbIsPoint);
    fields.value(40, self.m_radius, oddbIsLength);
    fields.value(39, self.m_thickness, oddbIsNumber);
    fields.value(210, self.m_normal, oddbIsNormal);
  }

  OdGePoint3d m_center;
  double m_radius = 1.0;
};
