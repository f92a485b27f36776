// OdDbVertexRun: what light-weight and 2D polylines share.
#pragma once

#include "platform/entities/arc_chords.h"
#include "platform/entities/curve.h"
#include "platform/entities/planar.h"
#include "platform/entities/plane_move.h"

/// A run of vertices in a plane, joined by straight lines and arcs, with widths. Vertices are in
/// the coordinates of the frame of the normal, at one elevation. Vertex i belongs to the segment
/// from it to the next one: a bulge (0 straight; else the tangent of a quarter of the arc's sweep,
/// positive counter-clockwise) and the widths at its two ends. The segment after the last vertex is
/// drawn when the run is closed. Parameters count segments: 1.5 is the middle of the second one.
/// Not a run-time class.
///
/// Indices out of range raise eInvalidIndex, numbers that are not finite eInvalidInput.
class OdDbVertexRun : public OdDbThick<OdDbCurve> {
 public:
  static constexpr OdUInt32 kMaxVertices = 1u << 24;

  [[nodiscard]] OdUInt32 numVerts() const;
  void addVertexAt(OdUInt32 index, const OdGePoint2d& point, double bulge = 0.0,
                   double startWidth = 0.0, double endWidth = 0.0);
  void removeVertexAt(OdUInt32 index);
  /// Removes all vertices.
  void reset();
  void getPointAt(OdUInt32 index, OdGePoint2d& point) const;
  /// In coordinates of the block.
  void getPointAt(OdUInt32 index, OdGePoint3d& point) const;
  void setPointAt(OdUInt32 index, const OdGePoint2d& point);
  [[nodiscard]] double getBulgeAt(OdUInt32 index) const;
  void setBulgeAt(OdUInt32 index, double bulge);
  void getWidthsAt(OdUInt32 index, double& startWidth, double& endWidth) const;
  /// Widths are not negative.
  void setWidthsAt(OdUInt32 index, double startWidth, double endWidth);
  void setConstantWidth(double width);
  [[nodiscard]] bool hasBulges() const;
  [[nodiscard]] bool hasWidth() const;

  [[nodiscard]] double elevation() const;
  void setElevation(double elevation);
  [[nodiscard]] bool isClosed() const override;
  void setClosed(bool closed);
  /// Segments that are drawn; 0 for fewer than two vertices.
  [[nodiscard]] OdUInt32 numSegments() const;

  [[nodiscard]] double length() const override;
  OdResult getGeomExtents(OdGeExtents3d& extents) const override;
  /// Lines and arcs.
  OdResult explode(OdRxObjectPtrArray& parts) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  /// eCannotScaleNonUniformly for a run with arcs or widths under a transform that is not similar
  /// in its plane.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;
  /// eDegenerateGeometry for a run without a segment.
  OdResult getRange(double& start, double& end) const override;
  [[nodiscard]] OdGePoint3d pointAt(double parameter) const override;
  void addChords(double deviation, std::vector<OdGePoint3d>& points) const override;
  [[nodiscard]] OdGeVector3d extrusion() const override { return m_normal * m_thickness; }

  template <class Fields, class Self>
  static void runFields(Fields& fields, Self& self) {
    fields.version(1);
    fields.value(38, self.m_elevation, oddbIsNumber);
    fields.value(39, self.m_thickness, oddbIsNumber);
    fields.value(210, self.m_normal, oddbIsNormal);
    fields.value(290, self.m_closed);
    fields.list(10, self.m_points, kMaxVertices, oddbIsPoint);
    fields.list(42, self.m_bulges, kMaxVertices, oddbIsNumber);
    fields.list(40, self.m_widths, 2 * kMaxVertices, oddbIsWidth);
    fields.rule([&] { return self.listsFit(); });
  }

 private:
  [[nodiscard]] bool listsFit() const;
  void checkIndex(OdUInt32 index) const;
  void openLists(bool forBulges, bool forWidths);
  void closeLists();
  [[nodiscard]] OdUInt32 after(OdUInt32 index) const;
  [[nodiscard]] bool isArc(OdUInt32 segment) const;
  [[nodiscard]] OdDbArcShape arcOf(OdUInt32 segment) const;
  [[nodiscard]] OdGePoint3d worldAt(OdUInt32 index) const;
  [[nodiscard]] double segmentLength(OdUInt32 segment) const;
  void drawWideSegment(OdGiWorldDraw* context, OdUInt32 segment) const;

 protected:
  OdArray<OdGePoint2d> m_points;
  OdArray<double> m_bulges;  // one for each vertex, or none when all are 0
  OdArray<double> m_widths;  // two for each vertex, or none when all are 0
  double m_elevation = 0.0;
  bool m_closed = false;
};
