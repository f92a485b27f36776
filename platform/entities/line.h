// OdDbLine: a straight segment.
#pragma once

#include "platform/db/entity.h"

/// A segment between two points in the coordinates of its block. The ends may coincide.
class OdDbLine : public OdDbEntity {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLine)

  [[nodiscard]] OdGePoint3d startPoint() const;
  [[nodiscard]] OdGePoint3d endPoint() const;
  /// Points that are not finite raise eInvalidInput.
  void setStartPoint(const OdGePoint3d& point);
  void setEndPoint(const OdGePoint3d& point);
  /// Direction in which a thickness would extrude the line; unit vector.
  [[nodiscard]] OdGeVector3d normal() const;
  /// Raises eDegenerateGeometry for a zero vector.
  void setNormal(const OdGeVector3d& normal);

  OdResult getGeomExtents(OdGeExtents3d& extents) const override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  friend struct OdDbFieldFiling;
  template <class Fields, class Self>
  static void fields(Fields& fields, Self& self);

  OdGePoint3d m_start;
  OdGePoint3d m_end;
  OdGeVector3d m_normal = OdGeVector3d::kZAxis;
};
using OdDbLinePtr = OdSmartPtr<OdDbLine>;
