// OdDbMlineStyle: what a multi-line is made of.
#pragma once

#include "platform/db/color.h"
#include "platform/db/filing_macros.h"
#include "platform/db/named_style.h"

/// One of the parallel lines.
struct OdDbMlineElement {
  double offset = 0.0;      ///< from the path to the left of its direction, before the scale
  OdCmColor color;          ///< by layer: that of the multi-line
  OdDbObjectId linetypeId;  ///< null: that of the multi-line

  friend bool operator==(const OdDbMlineElement&, const OdDbMlineElement&) = default;
};

/// A named style in the drawing's dictionary of multi-line styles. A new one has two lines, at 0.5
/// and -0.5.
class OdDbMlineStyle : public OdDbNamedStyle {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbMlineStyle)

  static constexpr OdUInt32 kMaxElements = 16;

  OdDbMlineStyle();

  /// In falling order of their offsets.
  [[nodiscard]] OdArray<OdDbMlineElement> elements() const;
  /// Sorts them. Raises eInvalidInput without an element or for an offset that is not finite,
  /// eLimitExceeded beyond kMaxElements.
  void setElements(const OdArray<OdDbMlineElement>& elements);
  /// Lines across the corners of the path.
  [[nodiscard]] bool showMiters() const;
  void setShowMiters(bool show);
  /// Straight lines across the ends.
  [[nodiscard]] bool startSquareCap() const;
  void setStartSquareCap(bool cap);
  [[nodiscard]] bool endSquareCap() const;
  void setEndSquareCap(bool cap);

 private:
  OdArray<double> m_offsets;
  OdArray<OdInt32> m_colors;  // packed
  OdDbObjectIdArray m_linetypes;
  bool m_showMiters = false;
  bool m_startCap = false;
  bool m_endCap = false;

  OD_DB_DECLARE_FILING()
};
using OdDbMlineStylePtr = OdSmartPtr<OdDbMlineStyle>;
