// OdDbTextStyleTable and its records: the text styles of a drawing.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/db/symbol_table.h"

/// A text style: font and the shape of its characters. A new one is upright, 1 wide, of no fixed
/// height. The names of font files are kept for programs that have these fonts; this runtime draws
/// with its stroke font.
class OdDbTextStyleTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbTextStyleTableRecord)

  [[nodiscard]] OdString fileName() const;
  void setFileName(const OdString& fontFile);
  [[nodiscard]] OdString bigFontFileName() const;
  void setBigFontFileName(const OdString& fontFile);
  /// Height of every text of the style; 0 leaves it to the text. Drawing units.
  [[nodiscard]] double textSize() const;
  /// Raises eInvalidInput for a height that is negative or not finite.
  void setTextSize(double height);
  /// Width of characters by their usual width, for new texts.
  [[nodiscard]] double xScale() const;
  /// Raises eInvalidInput unless the factor is from 0.01 to 100.
  void setXScale(double factor);
  /// Slant from the upright to the right, radians, for new texts.
  [[nodiscard]] double obliquingAngle() const;
  /// Raises eInvalidInput beyond 85 degrees.
  void setObliquingAngle(double angle);
  [[nodiscard]] bool isBackwards() const;
  void setIsBackwards(bool backwards);
  [[nodiscard]] bool isUpsideDown() const;
  void setIsUpsideDown(bool upsideDown);

 private:
  OdString m_fileName;
  OdString m_bigFontFileName;
  double m_textSize = 0.0;
  double m_xScale = 1.0;
  double m_obliquing = 0.0;
  bool m_backwards = false;
  bool m_upsideDown = false;

  OD_DB_DECLARE_FILING()
};
using OdDbTextStyleTableRecordPtr = OdSmartPtr<OdDbTextStyleTableRecord>;

/// Whether texts and styles take the number.
[[nodiscard]] bool oddbIsWidthFactor(double factor);
[[nodiscard]] bool oddbIsObliquingAngle(double radians);

class OdDbTextStyleTable : public OdDbSymbolTableOf<OdDbTextStyleTableRecord> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbTextStyleTable)
};
using OdDbTextStyleTablePtr = OdSmartPtr<OdDbTextStyleTable>;
