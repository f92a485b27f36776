// OdDbLine: a straight segment.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/curve.h"
#include "platform/entities/planar.h"

/// A segment between two points in the coordinates of its block. The ends may coincide. The normal
/// is the direction in which a thickness extrudes it. Parameters are distances from the start.
class OdDbLine : public OdDbThick<OdDbCurve> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLine)

  [[nodiscard]] OdGePoint3d startPoint() const;
  [[nodiscard]] OdGePoint3d endPoint() const;
  /// Points that are not finite raise eInvalidInput.
  void setStartPoint(const OdGePoint3d& point);
  void setEndPoint(const OdGePoint3d& point);

  [[nodiscard]] double length() const override;
  OdResult getGeomExtents(OdGeExtents3d& extents) const override;

 protected:
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;
  OdResult getRange(double& start, double& end) const override;
  [[nodiscard]] OdGePoint3d pointAt(double parameter) const override;
  void addChords(double deviation, std::vector<OdGePoint3d>& points) const override;
  [[nodiscard]] OdGeVector3d extrusion() const override { return m_normal * m_thickness; }

 private:
  OdGePoint3d m_start;
  OdGePoint3d m_end;

  OD_DB_DECLARE_FILING()
};
using OdDbLinePtr = OdSmartPtr<OdDbLine>;
