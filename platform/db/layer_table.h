// OdDbLayerTable and its records: the layers of a drawing.
#pragma once

#include "platform/db/color.h"
#include "platform/db/entity.h"
#include "platform/db/filing_macros.h"
#include "platform/db/symbol_table.h"

/// A layer. A new one is on, thawed, unlocked, plotted, with colour index 7 and a default pen.
class OdDbLayerTableRecord : public OdDbSymbolTableRecord {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLayerTableRecord)

  [[nodiscard]] OdCmColor color() const;
  /// Raises eInvalidInput for a colour by layer or by block.
  void setColor(const OdCmColor& color);
  [[nodiscard]] bool isFrozen() const;
  void setIsFrozen(bool frozen);
  [[nodiscard]] bool isOff() const;
  void setIsOff(bool off);
  [[nodiscard]] bool isLocked() const;
  void setIsLocked(bool locked);
  /// Left out of lists of layers.
  [[nodiscard]] bool isHidden() const;
  void setIsHidden(bool hidden);
  [[nodiscard]] bool isPlottable() const;
  void setIsPlottable(bool plottable);
  /// By-layer and by-block pens raise eInvalidInput.
  [[nodiscard]] OdDb::LineWeight lineWeight() const;
  void setLineWeight(OdDb::LineWeight weight);
  /// Null is "Continuous".
  [[nodiscard]] OdDbObjectId linetypeObjectId() const;
  void setLinetypeObjectId(const OdDbObjectId& id);

 private:
  enum Flags : OdUInt8 {
    kFrozen = 1u << 0,
    kOff = 1u << 1,
    kLocked = 1u << 2,
    kHidden = 1u << 3,
    kNotPlotted = 1u << 4,
    kAllFlags = (1u << 5) - 1,
  };

  [[nodiscard]] bool flag(OdUInt8 mask) const;
  void setFlag(OdUInt8 mask, bool value);

  OdCmColor m_color = OdCmColor::fromIndex(7);
  OdDbObjectId m_linetypeId;
  OdDb::LineWeight m_lineWeight = OdDb::kLnWtByLwDefault;
  OdUInt8 m_flags = 0;

  OD_DB_DECLARE_FILING()
};
using OdDbLayerTableRecordPtr = OdSmartPtr<OdDbLayerTableRecord>;

class OdDbLayerTable : public OdDbSymbolTableOf<OdDbLayerTableRecord> {
 public:
  OD_RX_DECLARE_MEMBERS(OdDbLayerTable)
};
using OdDbLayerTablePtr = OdSmartPtr<OdDbLayerTable>;
