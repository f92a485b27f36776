// OdDbPoint: a point.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/planar.h"

/// A place that is drawn as the settings PDMODE and PDSIZE of its drawing say: 0 a dot, 1 nothing,
/// 2 a plus, 3 a cross, 4 a stroke upwards; 32 more a circle around it, 64 more a square.
class OdDbPoint : public OdDbThick<OdDbEntity> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbPoint)

  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d position() const;
  void setPosition(const OdGePoint3d& position);
  /// Turn of the sign about the normal, radians.
  [[nodiscard]] double ecsRotation() const;
  void setEcsRotation(double angle);

  /// The place itself, with its thickness: signs do not count.
  OdResult getGeomExtents(OdGeExtents3d& extents) const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  OdGePoint3d m_position;
  double m_rotation = 0.0;

  OD_DB_DECLARE_FILING()
};
using OdDbPointPtr = OdSmartPtr<OdDbPoint>;
