// OdDbLinetypeTable and its records: the line types of a drawing.
#pragma once

#include "platform/db/symbol_table.h"

using OdDbDashArray = OdArray<double, OdMemoryAllocator<double>>;

/// A line type: a pattern of dashes (positive), gaps (negative) and dots (zero), in drawing units.
/// No dashes is a continuous line.
class OdDbLinetypeTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLinetypeTableRecord)

  static constexpr OdUInt32 kMaxDashes = 12;

  [[nodiscard]] OdString comments() const;
  void setComments(const OdString& description);
  [[nodiscard]] OdDbDashArray dashes() const;
  /// Raises eInvalidInput for a length that is not finite, and eLimitExceeded beyond kMaxDashes.
  void setDashes(const OdDbDashArray& dashes);
  /// Length of one period: the sum of the absolute lengths.
  [[nodiscard]] double patternLength() const;

  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;
  OdResult dxfInFields(OdDbDxfFiler* filer) override;
  void dxfOutFields(OdDbDxfFiler* filer) const override;

 private:
  friend struct OdDbFieldFiling;
  template <class Fields, class Self>
  static void fields(Fields& fields, Self& self);

  OdString m_description;
  OdDbDashArray m_dashes;
};
using OdDbLinetypeTableRecordPtr = OdSmartPtr<OdDbLinetypeTableRecord>;

class OdDbLinetypeTable : public OdDbSymbolTable {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLinetypeTable)

 protected:
  [[nodiscard]] OdRxClass* recordClass() const override;
};
using OdDbLinetypeTablePtr = OdSmartPtr<OdDbLinetypeTable>;
