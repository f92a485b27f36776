// OdDb3PointAngularDimension: the angle between two points, seen from a third.
#pragma once

#include "platform/entities/dimension.h"

/// The angle at a centre from one point to another, on that side on which the arc point is.
class OdDb3PointAngularDimension : public OdDbDimension {
 public:
  OD_RX_DECLARE_MEMBERS(OdDb3PointAngularDimension)

  OdDb3PointAngularDimension() : OdDbDimension(4) {}

  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d centerPoint() const { return point(0); }
  void setCenterPoint(const OdGePoint3d& center) { setPoint(0, "centre", center); }
  [[nodiscard]] OdGePoint3d xLine1Point() const { return point(1); }
  void setXLine1Point(const OdGePoint3d& point) { setPoint(1, "first point", point); }
  [[nodiscard]] OdGePoint3d xLine2Point() const { return point(2); }
  void setXLine2Point(const OdGePoint3d& point) { setPoint(2, "second point", point); }
  /// A point of the arc that is the dimension line.
  [[nodiscard]] OdGePoint3d arcPoint() const { return point(3); }
  void setArcPoint(const OdGePoint3d& point) { setPoint(3, "arc point", point); }

  /// Radians, above 0 up to a turn.
  [[nodiscard]] double measurement() const override;

 protected:
  void addPicture(OdDbDimPicture& picture) const override;
  [[nodiscard]] bool isAngular() const override { return true; }

 private:
  /// The arc counter-clockwise from its start; which of the two points that is.
  struct Span {
    double start = 0.0;
    double sweep = 0.0;
    bool beginsAtFirst = true;
  };
  [[nodiscard]] Span span() const;

  OD_DB_DECLARE_FILING()
};
using OdDb3PointAngularDimensionPtr = OdSmartPtr<OdDb3PointAngularDimension>;
