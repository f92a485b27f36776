// OdDbDimension: base of the dimensions.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/entities/curve.h"
#include "platform/entities/dimension_picture.h"
#include "platform/entities/planar.h"
#include "platform/entities/text_block.h"

/// A measurement of points, drawn by a dimension style. Sizes of the style do not follow
/// transforms; the points do, and with them the measurement. The text is always readable.
class OdDbDimension : public OdDbBoundedByDrawing<OdDbPlanar<OdDbEntity>> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbDimension)

  /// What is measured: drawing units, radians for angles.
  [[nodiscard]] virtual double measurement() const = 0;
  /// The measurement as the style shows it, with its signs and tolerances; formatted contents.
  [[nodiscard]] OdString formatMeasurement() const;
  /// The text; empty shows the measurement, and "<>" in it stands for the measurement. Formatted
  /// contents, see text_block.h. One space shows nothing.
  [[nodiscard]] OdString dimensionText() const;
  void setDimensionText(const OdString& text);
  /// Middle of the text, in coordinates of the block. Setting it takes the text from its usual
  /// place.
  [[nodiscard]] OdGePoint3d textPosition() const;
  void setTextPosition(const OdGePoint3d& position);
  [[nodiscard]] bool isUsingDefaultTextPosition() const;
  void useDefaultTextPosition();
  /// Radians from the X axis of the frame; 0 follows the dimension line.
  [[nodiscard]] double textRotation() const;
  void setTextRotation(double angle);
  /// Direction of level texts and of the X axis of ordinates, radians from the X axis of the frame.
  [[nodiscard]] double horizontalRotation() const;
  void setHorizontalRotation(double angle);
  /// Null is the style "Standard".
  [[nodiscard]] OdDbObjectId dimensionStyle() const;
  void setDimensionStyle(const OdDbObjectId& style);

  /// Lines, polylines and a block of text.
  OdResult explode(OdRxObjectPtrArray& parts) const override;
  [[nodiscard]] std::size_t approximateSize() const override;

 protected:
  explicit OdDbDimension(OdUInt32 numPoints) : m_numPoints(numPoints) {
    m_points.resize(numPoints);
  }

  bool subWorldDraw(OdGiWorldDraw* context) const override;
  OdResult subTransformBy(const OdGeMatrix3d& transform) override;

  /// Adds lines, arrowheads and the usual place of the text.
  virtual void addPicture(OdDbDimPicture& picture) const = 0;
  /// Signs before and after the number of the measurement.
  [[nodiscard]] virtual const wchar_t* prefix() const { return L""; }
  [[nodiscard]] virtual bool isAngular() const { return false; }
  /// Follows a transform with what a kind has besides its points.
  virtual void moveValues(const OdDbPlaneMove& /*move*/) {}

  /// A definition point, by its place in the stored list of its kind.
  [[nodiscard]] const OdGePoint3d& point(OdUInt32 index) const { return read(m_points)[index]; }
  void setPoint(OdUInt32 index, const char* what, const OdGePoint3d& point);

 private:
  /// Contents of the text, with the measurement in its place.
  [[nodiscard]] OdString shownText() const;
  [[nodiscard]] OdDbDimPicture picture(const OdDbDimStyleValues& style, double textWidth,
                                       double deviation) const;

  const OdUInt32 m_numPoints;  // of the kind
  OdArray<OdGePoint3d> m_points;
  OdString m_text;
  OdGePoint3d m_textPosition;
  OdDbObjectId m_style;
  double m_textRotation = 0.0;
  double m_horizontal = 0.0;
  bool m_usualPlace = true;

  OD_DB_DECLARE_FILING()
};
using OdDbDimensionPtr = OdSmartPtr<OdDbDimension>;
