// What is particular to each option of sheet metal.
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_options.h"

#include "platform/assoc/assoc_variable.h"
#include "platform/base/non_copyable.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/sheet_metal/vdm_db_isettings.h"
#include "vdm_db/sheet_metal/vdm_same_value.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_sheet_metal_context_option";

}  // namespace

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
class NumberGuard : OdNonCopyable {
 public:
  NumberGuard(double& number, double before) : m_number(number), m_before(before) {}
  ~NumberGuard() {
    if (!m_isKept) m_number = m_before;
  }
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
  if (value > kMaxRelativeBendDeduction) return kVdmOutOfRange;
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
