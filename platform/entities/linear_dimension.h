// Dimensions of a distance: aligned with their points, or in a direction of their own.
#pragma once

#include "platform/entities/dimension.h"

/// What both measure: two points from which extension lines lead to the dimension line. Not a
/// run-time class.
class OdDbLinearDimension : public OdDbDimension {
 public:
  /// The measured points and a point of the dimension line, in coordinates of the block.
  [[nodiscard]] OdGePoint3d xLine1Point() const { return point(0); }
  void setXLine1Point(const OdGePoint3d& point) { setPoint(0, "first point", point); }
  [[nodiscard]] OdGePoint3d xLine2Point() const { return point(1); }
  void setXLine2Point(const OdGePoint3d& point) { setPoint(1, "second point", point); }
  [[nodiscard]] OdGePoint3d dimLinePoint() const { return point(2); }
  void setDimLinePoint(const OdGePoint3d& point) { setPoint(2, "point of the line", point); }

  [[nodiscard]] double measurement() const override;

 protected:
  OdDbLinearDimension() : OdDbDimension(3) {}
  void addPicture(OdDbDimPicture& picture) const override;
  /// Unit vector along the dimension line, in the plane.
  [[nodiscard]] virtual OdGeVector3d along() const = 0;
};

/// The distance of two points, measured between them.
class OdDbAlignedDimension : public OdDbLinearDimension {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAlignedDimension)

 protected:
  [[nodiscard]] OdGeVector3d along() const override;

  OD_DB_DECLARE_FILING()
};
using OdDbAlignedDimensionPtr = OdSmartPtr<OdDbAlignedDimension>;

/// The distance of two points in one direction.
class OdDbRotatedDimension : public OdDbLinearDimension {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbRotatedDimension)

  /// Of the dimension line, radians from the X axis of the frame.
  [[nodiscard]] double rotation() const;
  void setRotation(double angle);

 protected:
  [[nodiscard]] OdGeVector3d along() const override;
  void moveValues(const OdDbPlaneMove& move) override { m_rotation = move.angle(m_rotation); }

 private:
  double m_rotation = 0.0;

  OD_DB_DECLARE_FILING()
};
using OdDbRotatedDimensionPtr = OdSmartPtr<OdDbRotatedDimension>;
