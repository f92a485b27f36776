// OdDbArcAlignedText: a text along an arc.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/arc_chords.h"
#include "platform/entities/planar.h"
#include "platform/entities/textual.h"

namespace OdDb {

/// Where on the arc a text is, as it reads. Numbers are stored.
enum ArcTextAlignment : OdUInt8 {
  kArcTextFit = 1,  ///< from end to end, by the distance of its characters
  kArcTextLeft = 2,
  kArcTextRight = 3,
  kArcTextCenter = 4,
};
enum ArcTextPosition : OdUInt8 { kArcTextConvexSide = 1, kArcTextConcaveSide = 2 };
/// Where the heads of the characters point.
enum ArcTextDirection : OdUInt8 { kArcTextOutward = 1, kArcTextInward = 2 };

}  // namespace OdDb

/// Characters along an arc about a centre, each upright to it. The arc runs counter-clockwise from
/// the start to the end angle; outward texts read clockwise, from the end to the start, inward ones
/// the other way. Always readable from the side of its normal.
class OdDbArcAlignedText : public OdDbTextual<OdDbPlanar<OdDbEntity>> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbArcAlignedText)

  /// With codes, see text_codes.h.
  [[nodiscard]] OdString textString() const;
  void setTextString(const OdString& text);
  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d center() const;
  void setCenter(const OdGePoint3d& center);
  [[nodiscard]] double radius() const;
  void setRadius(double radius);
  /// Radians from the X axis of the frame, 0 up to a turn.
  [[nodiscard]] double startAngle() const;
  void setStartAngle(double angle);
  [[nodiscard]] double endAngle() const;
  void setEndAngle(double angle);
  /// Of capitals, drawing units, positive.
  [[nodiscard]] double textSize() const;
  void setTextSize(double height);
  /// Width factor, 0.01 to 100.
  [[nodiscard]] double xScale() const;
  void setXScale(double factor);
  /// From the arc to the nearest side of the text, not negative.
  [[nodiscard]] double offsetFromArc() const;
  void setOffsetFromArc(double offset);
  /// From the ends of the arc to the text, along its base line.
  [[nodiscard]] double leftOffset() const;
  void setLeftOffset(double offset);
  [[nodiscard]] double rightOffset() const;
  void setRightOffset(double offset);
  [[nodiscard]] OdDb::ArcTextAlignment alignment() const;
  void setAlignment(OdDb::ArcTextAlignment alignment);
  [[nodiscard]] OdDb::ArcTextPosition textPosition() const;
  void setTextPosition(OdDb::ArcTextPosition position);
  [[nodiscard]] OdDb::ArcTextDirection textDirection() const;
  void setTextDirection(OdDb::ArcTextDirection direction);

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  /// eCannotScaleNonUniformly for a transform that is not similar in the plane.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  /// Radius of the circle that the base line is part of.
  [[nodiscard]] double baseRadius() const;

  OdString m_text;
  OdGePoint3d m_center;
  double m_radius = 10.0;
  double m_start = 0.0;
  double m_end = kOdDbFullTurn / 2;
  double m_size = 2.5;
  double m_xScale = 1.0;
  double m_offset = 0.0;
  double m_left = 0.0;
  double m_right = 0.0;
  OdDb::ArcTextAlignment m_alignment = OdDb::kArcTextFit;
  OdDb::ArcTextPosition m_position = OdDb::kArcTextConvexSide;
  OdDb::ArcTextDirection m_direction = OdDb::kArcTextOutward;

  OD_DB_DECLARE_FILING()
};
using OdDbArcAlignedTextPtr = OdSmartPtr<OdDbArcAlignedText>;
