// What all options of sheet metal do: their fields, with keys and settings, are rows.
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_option.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/sheet_metal/vdm_db_isettings.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_options.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_sheet_metal_context_option";

using S = VdmDbISettings;
struct NotRead {};
constexpr NotRead kNotRead;  // the settings say nothing of the field

}  // namespace

// ---- The fields of each option, in the order of their keys: key, field, setting

template <class Visit>
static void visitFields(VdmSheetMetalThicknessFields& f, const Visit& visit) {
  visit(kVdmThickness, f.thickness, &S::sheetMetalThickness);
}

template <class Visit>
static void visitFields(VdmSheetMetalBendRadiusFields& f, const Visit& visit) {
  visit(L"BendRadius", f.radius.value, &S::bendRadiusValue);
  visit(L"BendRadiusType", f.radius.type, kNotRead);  // comes of the mode
}

template <class Visit>
static void visitFields(VdmSheetMetalReliefFields& f, const Visit& visit) {
  visit(L"BendReliefParameters.width", f.width.value, &S::bendReliefWidth);
  visit(L"BendReliefParameters.type", f.width.type, &S::bendReliefWidthType);
  visit(L"BendReliefParameters.extension", f.extension.value, &S::reliefExtension);
  visit(L"BendReliefParameters.extensionType", f.extension.type, &S::reliefExtensionType);
  // The three come of one setting.
  visit(L"CornerReliefDiameterParameters.value", f.cornerDiameter, kNotRead);
  visit(L"CornerReliefDiameterParameters.storedValue", f.cornerStoredDiameter, kNotRead);
  visit(L"CornerReliefDiameterParameters.type", f.cornerType, kNotRead);
}

template <class Visit>
static void visitFields(VdmSheetMetalMiterFields& f, const Visit& visit) {
  visit(L"FlangeSplitGapParameters.value", f.gap.value, &S::flangeSplitGap);
  visit(L"FlangeSplitGapParameters.type", f.gap.type, &S::flangeSplitGapType);
  visit(L"FlangeSplitExtensionParameters.value", f.extension.value, &S::flangeSplitExtension);
}

template <class Visit>
static void visitFields(VdmSheetMetalHemFields& f, const Visit& visit) {
  visit(L"HemParameters.gapValue", f.gap.value, &S::hemGap);
  visit(L"HemParameters.gapType", f.gap.type, &S::hemGapType);
}

template <class Visit>
static void visitFields(VdmSheetMetalJunctionFields& f, const Visit& visit) {
  visit(L"JunctionGapParameters.value", f.gap.value, &S::junctionGap);
  visit(L"JunctionGapParameters.type", f.gap.type, &S::junctionGapType);
  visit(L"JunctionAlignmentParameters.type", f.alignment, &S::junctionAlignmentType);
}

template <class Visit>
static void visitFields(VdmSheetMetalBendLineExtentFields& f, const Visit& visit) {
  visit(L"BendLineExtentParameters.value", f.extent.value, &S::bendLineExtent);
  visit(L"BendLineExtentParameters.type", f.extent.type, &S::bendLineExtentType);
}

template <class Visit>
static void visitFields(VdmSheetMetalRibFields& f, const Visit& visit) {
  visit(L"RibParameters.profileRadiusValue", f.profileRadius.value, &S::ribProfileRadius);
  visit(L"RibParameters.profileRadiusType", f.profileRadius.type, &S::ribProfileRadiusType);
  visit(L"RibParameters.roundRadiusValue", f.roundRadius.value, &S::ribRoundRadius);
  visit(L"RibParameters.roundRadiusType", f.roundRadius.type, &S::ribRoundRadiusType);
  visit(L"RibParameters.filletRadiusValue", f.filletRadius.value, &S::ribFilletRadius);
  visit(L"RibParameters.filletRadiusType", f.filletRadius.type, &S::ribFilletRadiusType);
}

template <class Visit>
static void visitFields(VdmSheetMetalTabFields& f, const Visit& visit) {
  visit(L"TabParameters.slotNumber", f.slotNumber, &S::tabSlotNumber);
  visit(L"TabParameters.chamferDistanceType", f.chamferDistance.type, &S::tabChamferDistanceType);
  visit(L"TabParameters.chamferDistanceValue", f.chamferDistance.value, &S::tabChamferDistance);
  visit(L"TabParameters.clearanceType", f.clearance.type, &S::tabClearanceType);
  visit(L"TabParameters.clearanceValue", f.clearance.value, &S::tabClearance);
  visit(L"TabParameters.distanceType", f.distance.type, &S::tabDistanceType);
  visit(L"TabParameters.distanceValue", f.distance.value, &S::tabDistance);
  visit(L"TabParameters.edgeType", f.edgeType, &S::tabEdgeType);
  visit(L"TabParameters.heightType", f.height.type, &S::tabHeightType);
  visit(L"TabParameters.heightValue", f.height.value, &S::tabHeight);
  visit(L"TabParameters.lengthType", f.length.type, &S::tabLengthType);
  visit(L"TabParameters.lengthValue", f.length.value, &S::tabLength);
  // The type is the value without its fraction: 0 for a small ratio. Drawings depend on it.
  visit(L"TabParameters.roundRadiusType", f.filletRadius.type, &S::tabRoundRadius);
  visit(L"TabParameters.roundRadiusValue", f.filletRadius.value, &S::tabRoundRadius);
}

template <class Visit>
static void visitFields(VdmSheetMetalSharpBendRadiusLimitFields& f, const Visit& visit) {
  visit(L"SharpBendRadiusLimit", f.limit.value, &S::sharpBendRadiusLimit);
  visit(L"SharpBendRadiusType", f.limit.type, kNotRead);
}

template <class Visit>
static void visitFields(VdmSheetMetalUnfoldingFields& f, const Visit& visit) {
  visit(L"BendTablePath", f.bendTablePath, kNotRead);
  visit(L"FormFeatureUnfoldingMode", f.formFeatureMode, &S::formFeatureUnfoldingMode);
  visit(L"VeeDieWidth", f.dieWidth, kNotRead);
  visit(L"kFactor", f.kFactor, &S::kFactor);
  visit(L"HemRelativeBendDeduction", f.relativeBendDeduction, &S::hemRelativeBendDeduction);
}

template <class Visit>
static void visitFields(VdmSheetMetalLoftedBendFields& f, const Visit& visit) {
  visit(L"LoftedBendParameters.NumberSamples", f.numberSamples, &S::loftedBendNumberSamples);
}

// ---- What all options do

namespace {

// A number as a field takes it. A number for an integer loses its fraction; one that no integer
// holds gives 0.
template <class Field, class Value>
Field taken(Value value) {
  if constexpr (std::is_same_v<Field, OdLong> && std::is_same_v<Value, double>) {
    const double whole = std::trunc(value);
    const bool fits =
        whole >= std::numeric_limits<OdLong>::min() && whole <= std::numeric_limits<OdLong>::max();
    return fits ? static_cast<OdLong>(whole) : 0;
  } else {
    return static_cast<Field>(value);
  }
}

}  // namespace

VdmISheetMetalContextOption::~VdmISheetMetalContextOption() = default;

template <class Fields>
void VdmSheetMetalContextOptionOf<Fields>::bind(VdmProperties& bag) {
  visitFields(m_fields, [&bag](const OdString& key, auto& field, auto /*setting*/) {
    bag.mapProperty(key, &field);
  });
}

template <class Fields>
OdResult VdmSheetMetalContextOptionOf<Fields>::copyFrom(const VdmISheetMetalContextOption* other) {
  const auto* source = dynamic_cast<const VdmSheetMetalContextOptionOf*>(other);
  if (source == nullptr) {
    VDM_ASSERT_AT(0, kSource, 29);
    return kVdmNoSource;
  }
  m_fields = source->m_fields;
  return eOk;
}

template <class Fields>
OdResult VdmSheetMetalContextOptionOf<Fields>::setDefaultValue(const VdmDbISettings* settings) {
  m_fields = Fields();
  if (settings == nullptr) {
    if (Fields::kWithoutSettings == VdmWithoutSettings::kIsReported) VDM_ASSERT_AT(0, kSource, 33);
    return kVdmNoSource;
  }
  visitFields(m_fields, [settings]<class Field, class Setting>(const OdString& /*key*/,
                                                               Field& field, Setting setting) {
    if constexpr (!std::is_same_v<Setting, NotRead>) field = taken<Field>((settings->*setting)());
  });
  settingsWereRead(*settings);
  return eOk;
}

template class VdmSheetMetalContextOptionOf<VdmSheetMetalThicknessFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalBendRadiusFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalReliefFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalMiterFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalHemFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalJunctionFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalBendLineExtentFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalRibFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalTabFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalSharpBendRadiusLimitFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalUnfoldingFields>;
template class VdmSheetMetalContextOptionOf<VdmSheetMetalLoftedBendFields>;
