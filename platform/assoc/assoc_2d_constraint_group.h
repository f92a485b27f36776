// OdDbAssoc2dConstraintGroup: the 2D constraints that hold in one plane of a block.
#pragma once

#include "platform/assoc/assoc_action.h"
#include "platform/db/filing_macros.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/plane.h"

class OdDbAssoc2dConstraintGroup;
using OdDbAssoc2dConstraintGroupPtr = OdSmartPtr<OdDbAssoc2dConstraintGroup>;

/// An action whose dependencies name geometry that constraints hold together in a plane. The plane,
/// in coordinates of the block, is what this class keeps; a solver derives from it, keeps the
/// constraints and evaluates them.
class OdDbAssoc2dConstraintGroup : public OdDbAssocAction {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbAssoc2dConstraintGroup)

  /// The world XY plane at first; its axes are perpendicular unit vectors.
  [[nodiscard]] OdGePlane getWorkPlane() const;
  /// Makes the axes perpendicular unit vectors, the first one along that of `plane`. eInvalidInput,
  /// and nothing changes, for one that is not finite.
  OdResult setWorkPlane(const OdGePlane& plane);
  /// Takes the plane where the matrix takes it, by the images of its axes. eInvalidInput
  /// for a matrix that is not finite, eDegenerateGeometry for a singular one; nothing changes then.
  virtual OdResult transformActionBy(const OdGeMatrix3d& transform);

  OD_DB_DECLARE_FILING()

  OdGePoint3d m_origin;
  OdGeVector3d m_xAxis = OdGeVector3d::kXAxis;
  OdGeVector3d m_yAxis = OdGeVector3d::kYAxis;
};
