// OdDbLinetypeTable and its records: the line types of a drawing.
#pragma once

#include "platform/db/filing_macros.h"
#include "platform/db/symbol_table.h"
#include "platform/ge/point2d.h"

using OdDbDashArray = OdArray<double, OdMemoryAllocator<double>>;

/// A text or a shape in the pattern of a line type, at the end of one of its dashes.
struct OdDbDashText {
  OdInt32 dash = 0;         ///< index of the dash
  bool isShape = false;     ///< `text` names a shape of the shape file `font`
  bool isUpright = false;   ///< never upside down
  bool isAbsolute = false;  ///< turned from the X axis, not from the line
  OdString text;
  OdString font;          ///< name of a text style, or of a shape file
  double scale = 1.0;     ///< height of a text in drawing units, factor on a shape; greater than 0
  double rotation = 0.0;  ///< radians
  OdGePoint2d offset;     ///< along the line and to its left, drawing units

  friend bool operator==(const OdDbDashText&, const OdDbDashText&) = default;
};

/// A line type: a pattern of dashes (positive), gaps (negative) and dots (zero), in drawing units,
/// with texts and shapes in it. No dashes is a continuous line.
class OdDbLinetypeTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLinetypeTableRecord)

  static constexpr OdUInt32 kMaxDashes = 12;
  static constexpr OdUInt32 kMaxTexts = 12;

  [[nodiscard]] OdString comments() const;
  void setComments(const OdString& description);
  [[nodiscard]] OdDbDashArray dashes() const;
  /// Raises eInvalidInput for a length that is not finite, and eLimitExceeded beyond kMaxDashes.
  /// Drops the texts of dashes that are no more.
  void setDashes(const OdDbDashArray& dashes);
  [[nodiscard]] OdUInt32 numDashes() const;
  /// Raises eInvalidIndex.
  [[nodiscard]] double dashLengthAt(OdUInt32 index) const;
  [[nodiscard]] OdArray<OdDbDashText> texts() const;
  /// Raises eInvalidIndex for a dash that the pattern lacks, eInvalidInput for numbers that are not
  /// finite or a scale that is not positive, eLimitExceeded beyond kMaxTexts.
  void setTexts(const OdArray<OdDbDashText>& texts);
  /// Length of one period: the sum of the absolute lengths.
  [[nodiscard]] double patternLength() const;

 private:
  [[nodiscard]] bool hasSoundTexts() const;

  OdString m_description;
  OdDbDashArray m_dashes;
  // One element for each text.
  OdArray<OdInt32> m_textPlaces;  // dash * 8, and bits: 1 shape, 2 upright, 4 absolute
  OdStringArray m_texts;
  OdStringArray m_textFonts;
  OdArray<double> m_textScales;
  OdArray<double> m_textRotations;
  OdArray<OdGePoint2d> m_textOffsets;

  OD_DB_DECLARE_FILING()
};
using OdDbLinetypeTableRecordPtr = OdSmartPtr<OdDbLinetypeTableRecord>;

class OdDbLinetypeTable : public OdDbSymbolTableOf<OdDbLinetypeTableRecord> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLinetypeTable)
};
using OdDbLinetypeTablePtr = OdSmartPtr<OdDbLinetypeTable>;
