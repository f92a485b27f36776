// OdDbMline: parallel lines along a path.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/curve.h"
#include "platform/entities/planar.h"

class OdDbMlineStyle;

namespace OdDb {

/// Which of the lines the path is. Numbers are stored.
enum MlineJustification : OdUInt8 { kMlineTop = 0, kMlineZero = 1, kMlineBottom = 2 };

}  // namespace OdDb

/// The lines of a multi-line style along a path of straight segments, mitred at its corners.
class OdDbMline : public OdDbBoundedByDrawing<OdDbPlanar<OdDbEntity>> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbMline)

  static constexpr OdUInt32 kMaxVertices = 1u << 16;
  /// A corner sharper than this is cut at so many times the offset.
  static constexpr double kMiterLimit = 10.0;

  [[nodiscard]] OdUInt32 numVertices() const;
  /// Appends a vertex, in coordinates of the block; the point is moved into the plane of the first
  /// one. Raises eInvalidInput, eLimitExceeded beyond kMaxVertices.
  void appendSeg(const OdGePoint3d& point);
  /// Takes the last vertex away, and gives it; false without vertices.
  bool removeLastSeg(OdGePoint3d& last);
  /// Raises eInvalidIndex.
  [[nodiscard]] OdGePoint3d vertexAt(OdUInt32 index) const;
  [[nodiscard]] bool closedMline() const;
  void setClosedMline(bool closed);
  /// Factor on the offsets of the style, not 0; a negative one exchanges left and right.
  [[nodiscard]] double scale() const;
  void setScale(double scale);
  [[nodiscard]] OdDb::MlineJustification justification() const;
  void setJustification(OdDb::MlineJustification justification);
  /// Null is a style as it is made: two lines.
  [[nodiscard]] OdDbObjectId style() const;
  void setStyle(const OdDbObjectId& style);

  /// Lines.
  OdResult explode(OdRxObjectPtrArray& parts) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  /// eCannotScaleNonUniformly for a transform that is not similar in the plane.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  struct Drawn;
  [[nodiscard]] OdArray<Drawn> drawn() const;
  [[nodiscard]] OdArray<OdGeVector3d> miters() const;

  OdArray<OdGePoint3d> m_vertices;
  OdDbObjectId m_style;
  double m_scale = 1.0;
  OdDb::MlineJustification m_justification = OdDb::kMlineTop;
  bool m_closed = false;

  OD_DB_DECLARE_FILING()
};
using OdDbMlinePtr = OdSmartPtr<OdDbMline>;
