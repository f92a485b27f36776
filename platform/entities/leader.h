// OdDbLeader: a line from a note to what it is about.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/curve.h"
#include "platform/entities/planar.h"

/// A run of straight lines whose first point has an arrowhead. Sizes come from a dimension style.
/// Parameters count segments.
class OdDbLeader : public OdDbBoundedByDrawing<OdDbPlanar<OdDbCurve>> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLeader)

  static constexpr OdUInt32 kMaxVertices = 1u << 16;

  [[nodiscard]] OdUInt32 numVertices() const;
  /// In coordinates of the block; the point is moved into the plane of the first vertex. Raises
  /// eInvalidInput, eLimitExceeded beyond kMaxVertices.
  void appendVertex(const OdGePoint3d& point);
  /// Does nothing without vertices.
  void removeLastVertex();
  /// Raises eInvalidIndex.
  [[nodiscard]] OdGePoint3d vertexAt(OdUInt32 index) const;
  void setVertexAt(OdUInt32 index, const OdGePoint3d& point);
  [[nodiscard]] bool hasArrowHead() const;
  void enableArrowHead(bool enabled);
  /// A level stroke from the last vertex towards the note, as long as an arrowhead.
  [[nodiscard]] bool hasHookLine() const;
  void enableHookLine(bool enabled);
  /// The note; null for none. A soft pointer: the leader outlives its note.
  [[nodiscard]] OdDbObjectId annotationObjId() const;
  void attachAnnotation(const OdDbObjectId& annotation);
  void detachAnnotation() { attachAnnotation(OdDbObjectId()); }
  /// Null is the style "Standard".
  [[nodiscard]] OdDbObjectId dimensionStyle() const;
  void setDimensionStyle(const OdDbObjectId& style);

  [[nodiscard]] double length() const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;
  /// eDegenerateGeometry for a run without a segment.
  OdResult getRange(double& start, double& end) const override;
  [[nodiscard]] OdGePoint3d pointAt(double parameter) const override;
  void addChords(double deviation, std::vector<OdGePoint3d>& points) const override;

 private:
  OdArray<OdGePoint3d> m_vertices;
  OdGeVector3d m_hook = OdGeVector3d::kXAxis;  // direction of a level line
  OdDbObjectId m_annotation;
  OdDbObjectId m_style;
  bool m_arrow = true;
  bool m_hookLine = false;

  OD_DB_DECLARE_FILING()
};
using OdDbLeaderPtr = OdSmartPtr<OdDbLeader>;
