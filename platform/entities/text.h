// OdDbText: one line of text.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/planar.h"
#include "platform/entities/text_line.h"
#include "platform/entities/textual.h"

namespace OdDb {

/// How a text is placed along its base line. Numbers are stored.
enum TextHorzMode : OdUInt8 {
  kTextLeft = 0,
  kTextCenter = 1,
  kTextRight = 2,
  kTextAlign = 3,  ///< between position and alignment point, its height following
  kTextMid = 4,    ///< middle of the text, both ways
  kTextFit = 5,    ///< between position and alignment point, its width following
};

/// How it is placed across. Numbers are stored.
enum TextVertMode : OdUInt8 {
  kTextBase = 0,
  kTextBottom = 1,
  kTextVertMid = 2,
  kTextTop = 3,
};

}  // namespace OdDb

/// A line of text. A text that is left on its base line hangs on its position; any other one hangs
/// on its alignment point, which aligned and fitted ones reach from their position. A mirror image
/// of a text reads backwards.
class OdDbText : public OdDbTextual<OdDbThick<OdDbEntity>> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbText)

  /// With codes, see text_codes.h.
  [[nodiscard]] OdString textString() const;
  void setTextString(const OdString& text);
  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d position() const;
  void setPosition(const OdGePoint3d& position);
  [[nodiscard]] OdGePoint3d alignmentPoint() const;
  void setAlignmentPoint(const OdGePoint3d& point);
  /// Neither left nor on the base line: hangs on the alignment point.
  [[nodiscard]] bool usesAlignmentPoint() const;
  [[nodiscard]] OdDb::TextHorzMode horizontalMode() const;
  void setHorizontalMode(OdDb::TextHorzMode mode);
  [[nodiscard]] OdDb::TextVertMode verticalMode() const;
  void setVerticalMode(OdDb::TextVertMode mode);
  /// Of capitals, drawing units, positive.
  [[nodiscard]] double height() const;
  void setHeight(double height);
  /// Radians, counter-clockwise about the normal.
  [[nodiscard]] double rotation() const;
  void setRotation(double angle);
  /// 0.01 to 100.
  [[nodiscard]] double widthFactor() const;
  void setWidthFactor(double factor);
  /// Slant to the right, radians, within 85 degrees.
  [[nodiscard]] double oblique() const;
  void setOblique(double angle);
  /// Reads from right to left, as in a mirror.
  [[nodiscard]] bool isMirroredInX() const;
  void mirrorInX(bool mirrored);
  /// Upside down, reading from left to right.
  [[nodiscard]] bool isMirroredInY() const;
  void mirrorInY(bool mirrored);
  /// Takes style, height, width factor and slant for new texts from the drawing's settings.
  void setTextDefaults(OdDbDatabase* database);

  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  /// Under a transform that is not similar in its plane the text takes the height and the slant
  /// that its upright takes, and the width of its base line. eCannotScaleNonUniformly when that is
  /// beyond the limits of the slant or the width factor.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  [[nodiscard]] OdDbTextLine line(const OdString& plain) const;

  OdString m_text;
  OdGePoint3d m_position;
  OdGePoint3d m_alignment;
  double m_height = 2.5;
  double m_rotation = 0.0;
  double m_widthFactor = 1.0;
  double m_oblique = 0.0;
  OdDb::TextHorzMode m_horizontal = OdDb::kTextLeft;
  OdDb::TextVertMode m_vertical = OdDb::kTextBase;
  bool m_mirroredInX = false;
  bool m_mirroredInY = false;

  OD_DB_DECLARE_FILING()
};
using OdDbTextPtr = OdSmartPtr<OdDbText>;
