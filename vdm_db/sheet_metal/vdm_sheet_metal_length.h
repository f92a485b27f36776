// VdmSheetMetalLength: a length that is stored as a value or as a ratio of another one.
#pragma once

#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_types.h"

/// A length and how it relates to a reference, the thickness of the sheet for most. Laws:
///
/// 1. With the relation "ratio" the length is value * reference, so it follows the reference; with
///    "absolute" it is the value, in drawing units.
/// 2. A ratio of a reference that is not above 0 is 0, never infinite.
/// 3. Any other number of a relation, which only a file can bring, is reported as the failed
///    assertion "0"; the value itself is the answer then.
/// 4. A value that is not above 0, NaN included, is refused with 5, nothing being changed.
///
/// The structures below it differ in one law each.
struct VDM_DB_EXPORT VdmSheetMetalLength {
  double value = 0;
  OdLong type = 0;  ///< the relation as it is stored

  [[nodiscard]] VdmRelationToThicknessType relation() const {
    return static_cast<VdmRelationToThicknessType>(type);
  }
  [[nodiscard]] double absoluteValue(double reference) const;
  [[nodiscard]] double ratio(double reference) const;
  OdResult setAbsoluteValue(double newValue) {
    return set(newValue, VdmRelationToThicknessType::kAbsolute);
  }
  OdResult setRatio(double newValue) { return set(newValue, VdmRelationToThicknessType::kRatio); }

 protected:
  OdResult set(double newValue, VdmRelationToThicknessType relation);
  void assign(double newValue, VdmRelationToThicknessType relation);
};

/// Of ribs and tabs: the ratio of a relation that law 3 speaks of is not reported.
struct VDM_DB_EXPORT VdmSheetMetalLenientLength : VdmSheetMetalLength {
  [[nodiscard]] double ratio(double reference) const;
};

/// The fillet radius of a rib: every relation but 0 is absolute, and none is reported.
struct VDM_DB_EXPORT VdmSheetMetalFilletRadius : VdmSheetMetalLenientLength {
  [[nodiscard]] double absoluteValue(double reference) const;
};

/// The extent of bend lines: without law 4.
struct VDM_DB_EXPORT VdmSheetMetalUnlimitedLength : VdmSheetMetalLength {
  OdResult setAbsoluteValue(double newValue);
  OdResult setRatio(double newValue);
};

/// The gap of hems: a refusal is reported as the failed assertion "0", too.
struct VDM_DB_EXPORT VdmSheetMetalGuardedLength : VdmSheetMetalLength {
  OdResult setAbsoluteValue(double newValue);
  OdResult setRatio(double newValue);
};
