// OdDbMText: a block of text.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/planar.h"
#include "platform/entities/text_block.h"
#include "platform/entities/textual.h"

/// A text of several lines with formats (see text_block.h) that hangs on a location by one of nine
/// points. It is always readable from the side of its normal: a mirror image keeps the place of the
/// block and reads from left to right. Width factor and slant come from its style.
class OdDbMText : public OdDbTextual<OdDbPlanar<OdDbEntity>> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbMText)

  /// With formats.
  [[nodiscard]] OdString contents() const;
  void setContents(const OdString& contents);
  /// Without formats, lines parted by a line feed.
  [[nodiscard]] OdString text() const;
  /// In coordinates of the block.
  [[nodiscard]] OdGePoint3d location() const;
  void setLocation(const OdGePoint3d& location);
  /// Unit vector along the lines, in the plane.
  [[nodiscard]] OdGeVector3d direction() const;
  /// Its part across the normal counts; raises eInvalidInput when there is none.
  void setDirection(const OdGeVector3d& direction);
  /// The same as an angle from the X axis of the frame, radians.
  [[nodiscard]] double rotation() const;
  void setRotation(double angle);
  /// The direction is turned with it.
  void setNormal(const OdGeVector3d& normal);
  /// Lines break beyond this width; 0 for never. Drawing units.
  [[nodiscard]] double width() const;
  void setWidth(double width);
  /// Of capitals, drawing units, positive.
  [[nodiscard]] double textHeight() const;
  void setTextHeight(double height);
  [[nodiscard]] OdDb::AttachmentPoint attachment() const;
  void setAttachment(OdDb::AttachmentPoint attachment);
  /// Factor on the distance of lines, 0.25 to 4.
  [[nodiscard]] double lineSpacingFactor() const;
  void setLineSpacingFactor(double factor);
  /// Width and height of what is drawn, from the top of the capitals to the last base line.
  [[nodiscard]] double actualWidth() const;
  [[nodiscard]] double actualHeight() const;

  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  bool subWorldDraw(OdGiWorldDraw* context) const override;
  /// Under a transform that is not similar in its plane the block keeps its shape: it is turned by
  /// its direction and scaled by the factor on areas.
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

 private:
  [[nodiscard]] OdDbTextBlock block() const;

  OdString m_contents;
  OdGePoint3d m_location;
  OdGeVector3d m_direction = OdGeVector3d::kXAxis;
  double m_width = 0.0;
  double m_height = 2.5;
  double m_spacing = 1.0;
  OdDb::AttachmentPoint m_attachment = OdDb::kTopLeft;

  OD_DB_DECLARE_FILING()
};
using OdDbMTextPtr = OdSmartPtr<OdDbMText>;
