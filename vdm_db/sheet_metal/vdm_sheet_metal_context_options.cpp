// The options of sheet metal: keys, settings, and what is particular to each.
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_options.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "platform/assoc/assoc_variable.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/sheet_metal/vdm_db_isettings.h"
#include "vdm_db/sheet_metal/vdm_same_value.h"
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

// ---- Thickness

void VdmSheetMetalContextThicknessOption::bind(VdmProperties& bag) {
  m_pProperties = &bag;
  VdmSheetMetalContextOptionOf::bind(bag);
}

OdResult VdmSheetMetalContextThicknessOption::setValue(double value) {
  if (!(value > 0)) return kVdmOutOfRange;
  const double before = m_fields.thickness;
  m_fields.thickness = value;
  if (!VDM_ASSERT_AT(m_pProperties, kSource, 131)) return eOk;
  return toVariable(before);
}

namespace {

// Takes a number back unless it is kept.
class NumberGuard {
 public:
  NumberGuard(double& number, double before) : m_number(number), m_before(before) {}
  ~NumberGuard() {
    if (!m_isKept) m_number = m_before;
  }
  NumberGuard(const NumberGuard&) = delete;
  NumberGuard& operator=(const NumberGuard&) = delete;
  OdResult keep(OdResult result) {
    m_isKept = result == eOk;
    return result;
  }

 private:
  double& m_number;
  double m_before;
  bool m_isKept = false;
};

}  // namespace

// The field has its new value first: the context hears of the variable and finds them equal.
OdResult VdmSheetMetalContextThicknessOption::toVariable(double before) {
  OdDbObjectId id;
  if (m_pProperties == nullptr || !m_pProperties->getProperty(kVdmThicknessVar, id)) return eOk;
  const auto variable = id.openAs<OdDbAssocVariable>();
  if (variable.isNull()) return eOk;
  if (!vdmDiffers(vdmu::getValueAsDouble(variable), m_fields.thickness)) return eOk;
  NumberGuard guard(m_fields.thickness, before);
  const VdmOpenUpgrade upgrade(variable);
  return guard.keep(vdmu::setConstExpression(variable, m_fields.thickness));
}

OdResult VdmSheetMetalContextThicknessOption::copyFrom(const VdmISheetMetalContextOption* other) {
  const double before = m_fields.thickness;
  const OdResult result = VdmSheetMetalContextOptionOf::copyFrom(other);
  return result == eOk ? toVariable(before) : result;
}

OdResult VdmSheetMetalContextThicknessOption::setDefaultValue(const VdmDbISettings* settings) {
  const double before = m_fields.thickness;
  const OdResult result = VdmSheetMetalContextOptionOf::setDefaultValue(settings);
  const OdResult written = toVariable(before);
  return result == eOk ? written : result;
}

// ---- Bend radius

VdmSheetMetalContextBendRadiusOption::VdmSheetMetalContextBendRadiusOption(
    const VdmSheetMetalContextThicknessOption& thickness)
    : VdmSheetMetalContextOptionByThickness(thickness) {
  m_fields.radius.value = 2.0;
}

// The mode's lowest bit is the relation, the one above it says that the radius may be overridden.
void VdmSheetMetalContextBendRadiusOption::settingsWereRead(const VdmDbISettings& settings) {
  const int mode = settings.bendRadiusMode();
  m_fields.radius.type = mode & 1;
  m_fields.canOverrideInSmConvert = mode == 2 || mode == 3;
}

// ---- Relief

namespace {

bool isAbsolute(OdLong type) {
  return static_cast<VdmCornerReliefDiameterType>(type) == VdmCornerReliefDiameterType::kAbsolute;
}

constexpr double kAutomaticDiameter = -1.0;

}  // namespace

double VdmSheetMetalContextReliefOption::cornerReliefDiameterAbsoluteValue() const {
  return isAbsolute(m_fields.cornerType) ? m_fields.cornerDiameter : kAutomaticDiameter;
}

OdResult VdmSheetMetalContextReliefOption::setCornerReliefDiameterAbsoluteValue(double value) {
  if (!(value > 0)) return kVdmOutOfRange;
  m_fields.cornerDiameter = value;
  m_fields.cornerStoredDiameter = value;
  m_fields.cornerType = static_cast<OdLong>(VdmCornerReliefDiameterType::kAbsolute);
  return eOk;
}

double VdmSheetMetalContextReliefOption::cornerReliefDiameterStoredAbsoluteValue() const {
  return m_fields.cornerStoredDiameter;
}

void VdmSheetMetalContextReliefOption::setCornerReliefDiameterStoredAbsoluteValue(double value) {
  m_fields.cornerStoredDiameter = value;
}

void VdmSheetMetalContextReliefOption::setCornerReliefDiameterAutoMode() {
  m_fields.cornerDiameter = kAutomaticDiameter;
  m_fields.cornerType = static_cast<OdLong>(VdmCornerReliefDiameterType::kAutomatic);
}

// The fields hold the fallback, which is automatic; 0 and NaN leave it.
void VdmSheetMetalContextReliefOption::settingsWereRead(const VdmDbISettings& settings) {
  const double diameter = settings.cornerReliefDiameter();
  if (diameter < 0) setCornerReliefDiameterAutoMode();
  if (diameter > 0) setCornerReliefDiameterAbsoluteValue(diameter);
}

// ---- Junction

VdmJunctionAlignmentToReliefType VdmSheetMetalContextJunctionOption::alignmentToReliefType() const {
  return static_cast<VdmJunctionAlignmentToReliefType>(m_fields.alignment);
}

void VdmSheetMetalContextJunctionOption::setAlignmentToReliefType(
    VdmJunctionAlignmentToReliefType type) {
  m_fields.alignment = static_cast<OdLong>(type);
}

// ---- Rib

VdmRibFilletRadiusType VdmSheetMetalContextRibOption::filletRadiusType() const {
  return static_cast<VdmRibFilletRadiusType>(m_fields.filletRadius.type);
}

double VdmSheetMetalContextRibOption::filletRadiusAbsoluteValue() const {
  return m_fields.filletRadius.absoluteValue(profileRadiusAbsoluteValue());
}

double VdmSheetMetalContextRibOption::filletRadiusProfileRatio() const {
  return m_fields.filletRadius.ratio(profileRadiusAbsoluteValue());
}

OdResult VdmSheetMetalContextRibOption::setFilletRadiusAbsoluteValue(double value) {
  return m_fields.filletRadius.setAbsoluteValue(value);
}

OdResult VdmSheetMetalContextRibOption::setFilletRadiusProfileRatio(double value) {
  return m_fields.filletRadius.setRatio(value);
}

// ---- Tab

OdResult VdmSheetMetalContextTabOption::setSlotNumber(int number) {
  if (number < 0) return kVdmOutOfRange;
  m_fields.slotNumber = number;
  return eOk;
}

VdmTabEdgeType VdmSheetMetalContextTabOption::edgeType() const {
  return static_cast<VdmTabEdgeType>(m_fields.edgeType);
}

void VdmSheetMetalContextTabOption::setEdgeType(VdmTabEdgeType type) {
  m_fields.edgeType = static_cast<OdLong>(type);
}

// ---- Unfolding

namespace {

constexpr double kMaxRelativeBendDeduction = 10.0;
constexpr double kNoDie = -1.0;

}  // namespace

OdResult VdmSheetMetalContextUnfoldingOption::setKFactorValue(double value) {
  if (!(value >= 0 && value <= 1)) return kVdmOutOfRange;
  m_fields.kFactor = value;
  return eOk;
}

OdResult VdmSheetMetalContextUnfoldingOption::setRelativeBendDeduction(double value) {
  if (!(value <= kMaxRelativeBendDeduction)) return kVdmOutOfRange;
  m_fields.relativeBendDeduction = value;
  return eOk;
}

void VdmSheetMetalContextUnfoldingOption::setBendTableRelativePath(const OdString& path) {
  m_fields.bendTablePath = path;
}

OdResult VdmSheetMetalContextUnfoldingOption::setDieWidthValue(double value) {
  if (!(value > 0 || value == kNoDie)) return kVdmOutOfRange;
  m_fields.dieWidth = value;
  return eOk;
}

VdmFormFeatureUnfoldingMode VdmSheetMetalContextUnfoldingOption::formFeatureUnfoldingMode() const {
  return static_cast<VdmFormFeatureUnfoldingMode>(m_fields.formFeatureMode);
}

void VdmSheetMetalContextUnfoldingOption::setFormFeatureUnfoldingMode(
    VdmFormFeatureUnfoldingMode mode) {
  m_fields.formFeatureMode = static_cast<OdLong>(mode);
}

// ---- Lofted bend

OdResult VdmSheetMetalContextLoftedBendOption::setLoftedBendNumberSamples(int number) {
  if (number < 1) return kVdmOutOfRange;
  m_fields.numberSamples = number;
  return eOk;
}
