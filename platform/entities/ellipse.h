// OdDbEllipse: an ellipse or a part of one.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/arc_chords.h"
#include "platform/entities/curve.h"
#include "platform/entities/planar.h"

/// The points `center + major cos t + minor sin t`, for the parameter t (radians) from the start to
/// the end, counter-clockwise about the normal. The minor axis is the normal crossed with the major
/// one, in the length of the radius ratio. Any regular affine transform keeps an ellipse.
class OdDbEllipse : public OdDbPlanar<OdDbCurve> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbEllipse)

  /// Least radius ratio: a flatter ellipse is a line to any drawing.
  static constexpr double kLeastRatio = 1e-6;

  /// All of it at once; `end` beyond a turn from `start` is brought back. Raises eInvalidInput for
  /// values that are not finite, a ratio outside kLeastRatio to 1, or a major axis that is not
  /// perpendicular to the normal, eDegenerateGeometry for a zero vector.
  void set(const OdGePoint3d& center, const OdGeVector3d& normal, const OdGeVector3d& majorAxis,
           double radiusRatio, double startParam = 0.0, double endParam = kOdDbFullTurn);

  [[nodiscard]] OdGePoint3d center() const;
  void setCenter(const OdGePoint3d& center);
  [[nodiscard]] OdGeVector3d majorAxis() const;
  [[nodiscard]] OdGeVector3d minorAxis() const;
  [[nodiscard]] double radiusRatio() const;
  void setRadiusRatio(double ratio);
  /// Parameters of the ends: the start from 0 up to a turn, the end above it by at most a turn.
  [[nodiscard]] double startParam() const;
  [[nodiscard]] double endParam() const;
  /// The angles at which the ends are seen from the centre, from the major axis; radians, in the
  /// same turns as the parameters.
  [[nodiscard]] double startAngle() const;
  [[nodiscard]] double endAngle() const;
  [[nodiscard]] double paramAtAngle(double angle) const;
  [[nodiscard]] double angleAtParam(double parameter) const;

  /// The major axis is turned with the normal; raises eInvalidInput when they are parallel then.
  void setNormal(const OdGeVector3d& normal);

  /// By Simpson's rule over 256 pieces; within 1e-9 of itself for ratios from 0.05.
  [[nodiscard]] double length() const override;
  OdResult getGeomExtents(OdGeExtents3d& extents) const override;

 protected:
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;
  OdResult getRange(double& start, double& end) const override;
  [[nodiscard]] OdGePoint3d pointAt(double parameter) const override;
  void addChords(double deviation, std::vector<OdGePoint3d>& points) const override;

 private:
  [[nodiscard]] OdDbArcShape shape() const;

  OdGePoint3d m_center;
  OdGeVector3d m_major = OdGeVector3d::kXAxis;
  double m_ratio = 1.0;
  double m_start = 0.0;
  double m_end = kOdDbFullTurn;

  OD_DB_DECLARE_FILING()
};
using OdDbEllipsePtr = OdSmartPtr<OdDbEllipse>;
