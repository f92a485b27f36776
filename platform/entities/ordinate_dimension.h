// OdDbOrdinateDimension: one coordinate of a point.
#pragma once

#include "platform/entities/dimension.h"

/// The distance of a point from an origin along one axis, at the end of a line from the point. The
/// X axis is turned by the horizontal rotation.
class OdDbOrdinateDimension : public OdDbDimension {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbOrdinateDimension)

  OdDbOrdinateDimension() : OdDbDimension(3) {}

  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d origin() const { return point(0); }
  void setOrigin(const OdGePoint3d& origin) { setPoint(0, "origin", origin); }
  [[nodiscard]] OdGePoint3d definingPoint() const { return point(1); }
  void setDefiningPoint(const OdGePoint3d& point) { setPoint(1, "defining point", point); }
  [[nodiscard]] OdGePoint3d leaderEndPoint() const { return point(2); }
  void setLeaderEndPoint(const OdGePoint3d& point) { setPoint(2, "end of the leader", point); }
  /// Measures X; its line runs along Y.
  [[nodiscard]] bool isUsingXAxis() const;
  void useXAxis() { change(m_usesX, true); }
  void useYAxis() { change(m_usesX, false); }

  /// Not negative.
  [[nodiscard]] double measurement() const override;

 protected:
  void addPicture(OdDbDimPicture& picture) const override;

 private:
  bool m_usesX = true;

  OD_DB_DECLARE_FILING()
};
using OdDbOrdinateDimensionPtr = OdSmartPtr<OdDbOrdinateDimension>;
