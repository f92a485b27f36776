// Lengths of sheet metal: relations, and what is refused.
#include "vdm_db/sheet_metal/vdm_sheet_metal_length.h"

#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_sheet_metal_context_option";

using Relation = VdmRelationToThicknessType;

}  // namespace

// ---- The common laws

double VdmSheetMetalLength::absoluteValue(double reference) const {
  if (relation() == Relation::kRatio) return value * reference;
  if (relation() != Relation::kAbsolute) VDM_ASSERT_AT(0, kSource, 51);
  return value;
}

double VdmSheetMetalLength::ratio(double reference) const {
  if (relation() == Relation::kAbsolute) return reference > 0 ? value / reference : 0.0;
  if (relation() != Relation::kRatio) VDM_ASSERT_AT(0, kSource, 68);
  return value;
}

OdResult VdmSheetMetalLength::set(double newValue, Relation relation) {
  if (!(newValue > 0)) return kVdmOutOfRange;
  assign(newValue, relation);
  return eOk;
}

void VdmSheetMetalLength::assign(double newValue, Relation relation) {
  value = newValue;
  type = static_cast<OdLong>(relation);
}

// ---- Where one of them differs

double VdmSheetMetalLenientLength::ratio(double reference) const {
  return relation() == Relation::kAbsolute ? VdmSheetMetalLength::ratio(reference) : value;
}

double VdmSheetMetalFilletRadius::absoluteValue(double reference) const {
  return relation() == Relation::kRatio ? value * reference : value;
}

OdResult VdmSheetMetalUnlimitedLength::setAbsoluteValue(double newValue) {
  assign(newValue, Relation::kAbsolute);
  return eOk;
}

OdResult VdmSheetMetalUnlimitedLength::setRatio(double newValue) {
  assign(newValue, Relation::kRatio);
  return eOk;
}

OdResult VdmSheetMetalGuardedLength::setAbsoluteValue(double newValue) {
  const OdResult result = VdmSheetMetalLength::setAbsoluteValue(newValue);
  if (result != eOk) VDM_ASSERT_AT(0, kSource, 412);
  return result;
}

OdResult VdmSheetMetalGuardedLength::setRatio(double newValue) {
  const OdResult result = VdmSheetMetalLength::setRatio(newValue);
  if (result != eOk) VDM_ASSERT_AT(0, kSource, 424);
  return result;
}
