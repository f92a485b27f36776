// OdDbViewport: a window of a paper space into model space.
#pragma once

#include "platform/db/entity.h"
#include "platform/db/filing_macros.h"
#include "platform/ge/point2d.h"

/// A rectangle on paper and the view that it shows. Paper lengths are in paper units; the view is
/// in world coordinates: it looks against `viewDirection` at `viewTarget`, and `viewCenter` is in
/// the display plane, whose X axis is turned by `-twistAngle`.
class OdDbViewport : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbViewport)

  /// Middle of the rectangle on paper.
  [[nodiscard]] OdGePoint3d centerPoint() const;
  void setCenterPoint(const OdGePoint3d& center);
  /// Sizes on paper; values that are not positive and finite raise eInvalidInput.
  [[nodiscard]] double width() const;
  void setWidth(double width);
  [[nodiscard]] double height() const;
  void setHeight(double height);

  [[nodiscard]] OdGePoint2d viewCenter() const;
  void setViewCenter(const OdGePoint2d& center);
  [[nodiscard]] OdGePoint3d viewTarget() const;
  void setViewTarget(const OdGePoint3d& target);
  /// From the target to the eye; never a zero vector (eDegenerateGeometry).
  [[nodiscard]] OdGeVector3d viewDirection() const;
  void setViewDirection(const OdGeVector3d& direction);
  /// Height of the view in the display plane, in drawing units.
  [[nodiscard]] double viewHeight() const;
  void setViewHeight(double height);
  /// Radians.
  [[nodiscard]] double twistAngle() const;
  void setTwistAngle(double angle);
  /// Paper height by view height. Setting it changes the view height.
  [[nodiscard]] double customScale() const;
  void setCustomScale(double scale);
  /// 0 while inactive; 1 is the paper space's own viewport.
  [[nodiscard]] OdInt16 number() const;
  void setNumber(OdInt16 number);
  [[nodiscard]] bool isOn() const;
  void setOn(bool on);

  OdResult getGeomExtents(OdGeExtents3d& extents) const override;

 protected:
  /// Moves, turns and scales the rectangle on paper; the view stays.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  OdGePoint3d m_center;
  OdGePoint3d m_viewTarget;
  OdGeVector3d m_viewDirection = OdGeVector3d::kZAxis;
  OdGePoint2d m_viewCenter;
  double m_width = 297.0;
  double m_height = 210.0;
  double m_viewHeight = 210.0;
  double m_twist = 0.0;
  OdInt16 m_number = 0;
  bool m_on = true;

  OD_DB_DECLARE_FILING()
};
using OdDbViewportPtr = OdSmartPtr<OdDbViewport>;
