// The twelve options of a sheet-metal context.
#pragma once

#include "platform/base/string.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_context_option.h"
#include "vdm_db/sheet_metal/vdm_sheet_metal_length.h"

// ---- Accessors of a length, by its prefix: type, absolute value, ratio, and the setters of the
// ---- last two, which set the type as well.
#define VDM_SHEET_METAL_LENGTH(get, Set, field, reference)                                     \
  [[nodiscard]] VdmRelationToThicknessType get##Type() const { return (field).relation(); }    \
  [[nodiscard]] double get##AbsoluteValue() const { return (field).absoluteValue(reference); } \
  [[nodiscard]] double get##Ratio() const { return (field).ratio(reference); }                 \
  OdResult set##Set##AbsoluteValue(double value) { return (field).setAbsoluteValue(value); }   \
  OdResult set##Set##Ratio(double value) { return (field).setRatio(value); }
// The same of an option that is one length. Options are equal when their absolute values are.
#define VDM_SHEET_METAL_OWN_LENGTH(Option, field, reference)                              \
  [[nodiscard]] VdmRelationToThicknessType type() const { return (field).relation(); }    \
  [[nodiscard]] double absoluteValue() const { return (field).absoluteValue(reference); } \
  [[nodiscard]] double ratio() const { return (field).ratio(reference); }                 \
  OdResult setAbsoluteValue(double value) { return (field).setAbsoluteValue(value); }     \
  OdResult setRatio(double value) { return (field).setRatio(value); }                     \
  friend bool operator==(const Option& a, const Option& b) {                              \
    return a.absoluteValue() == b.absoluteValue();                                        \
  }

// ---- Thickness

struct VDM_DB_EXPORT VdmSheetMetalThicknessFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsReported;
  double thickness = 2.0;
};

/// The thickness of the sheet, in drawing units. While a variable drives the context, each change
/// of the option is written to the variable, too.
class VDM_DB_EXPORT VdmSheetMetalContextThicknessOption
    : public VdmSheetMetalContextOptionOf<VdmSheetMetalThicknessFields> {
 public:
  [[nodiscard]] double value() const { return m_fields.thickness; }
  /// 5 for a value that is not above 0. When the variable does not take the value, what it says,
  /// and nothing changes. An option that is bound to no bag takes the value and reports the failed
  /// assertion "m_pProperties".
  OdResult setValue(double value);

  void bind(VdmProperties& bag) override;
  OdResult copyFrom(const VdmISheetMetalContextOption* other) override;
  OdResult setDefaultValue(const VdmDbISettings* settings) override;

 private:
  /// Writes a new value to the variable, if there is one and it differs; takes the field back to
  /// `before` when it is refused.
  OdResult toVariable(double before);

  VdmProperties* m_pProperties = nullptr;
};

/// An option whose lengths may be ratios of the thickness.
template <class Fields>
class VDM_DB_EXPORT VdmSheetMetalContextOptionByThickness
    : public VdmSheetMetalContextOptionOf<Fields> {
 public:
  /// The thickness option outlives this one.
  explicit VdmSheetMetalContextOptionByThickness(
      const VdmSheetMetalContextThicknessOption& thickness)
      : m_thickness(thickness) {}

 protected:
  [[nodiscard]] double thickness() const { return m_thickness.value(); }

 private:
  const VdmSheetMetalContextThicknessOption& m_thickness;
};

// ---- Bends

struct VDM_DB_EXPORT VdmSheetMetalBendRadiusFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsReported;
  VdmSheetMetalLength radius{1.0};
  bool canOverrideInSmConvert = false;  ///< not filed
};

/// The inner radius of bends. A new option has the value 2.0, where the default is 1.0.
class VDM_DB_EXPORT VdmSheetMetalContextBendRadiusOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalBendRadiusFields> {
 public:
  explicit VdmSheetMetalContextBendRadiusOption(
      const VdmSheetMetalContextThicknessOption& thickness);
  VDM_SHEET_METAL_OWN_LENGTH(VdmSheetMetalContextBendRadiusOption, m_fields.radius, thickness())
  /// Whether a conversion to sheet metal may choose another radius. Known while the context is in
  /// memory.
  [[nodiscard]] bool canOverrideInSmConvert() const { return m_fields.canOverrideInSmConvert; }

 private:
  void settingsWereRead(const VdmDbISettings& settings) override;
};

struct VDM_DB_EXPORT VdmSheetMetalBendLineExtentFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsSilent;
  VdmSheetMetalUnlimitedLength extent{{0.25}};
};

/// How far bend lines reach beyond the sheet. Takes every value.
class VDM_DB_EXPORT VdmSheetMetalContextBendLineExtentOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalBendLineExtentFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_OWN_LENGTH(VdmSheetMetalContextBendLineExtentOption, m_fields.extent, thickness())
};

struct VDM_DB_EXPORT VdmSheetMetalSharpBendRadiusLimitFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsSilent;
  VdmSheetMetalLength limit{5.0};
};

/// Bends below this radius count as sharp.
class VDM_DB_EXPORT VdmSheetMetalContextSharpBendRadiusLimitOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalSharpBendRadiusLimitFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_OWN_LENGTH(VdmSheetMetalContextSharpBendRadiusLimitOption, m_fields.limit,
                             thickness())
};

// ---- Cuts between flanges

struct VDM_DB_EXPORT VdmSheetMetalReliefFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsReported;
  VdmSheetMetalLength width{0.5};
  VdmSheetMetalLength extension{0.1};
  double cornerDiameter = -1.0;
  double cornerStoredDiameter = 0.0;
  OdLong cornerType = 0;  ///< VdmCornerReliefDiameterType
};

/// Reliefs of bends and corners. The diameter of corners is automatic, or absolute in drawing
/// units.
class VDM_DB_EXPORT VdmSheetMetalContextReliefOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalReliefFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_LENGTH(bendReliefWidth, BendReliefWidth, m_fields.width, thickness())
  VDM_SHEET_METAL_LENGTH(extension, Extension, m_fields.extension, thickness())

  /// -1.0 while the diameter is automatic.
  [[nodiscard]] double cornerReliefDiameterAbsoluteValue() const;
  /// Also the stored value.
  OdResult setCornerReliefDiameterAbsoluteValue(double value);
  /// The last absolute diameter, while the mode is automatic; any value is taken.
  [[nodiscard]] double cornerReliefDiameterStoredAbsoluteValue() const;
  void setCornerReliefDiameterStoredAbsoluteValue(double value);
  /// Keeps the stored value.
  void setCornerReliefDiameterAutoMode();

 private:
  void settingsWereRead(const VdmDbISettings& settings) override;
};

struct VDM_DB_EXPORT VdmSheetMetalMiterFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsReported;
  VdmSheetMetalLength gap{0.1};
  VdmSheetMetalLength extension{0.1};  ///< its type is not filed: 0 after every reading
};

/// Mitred flanges: gap and extension.
class VDM_DB_EXPORT VdmSheetMetalContextMiterOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalMiterFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_LENGTH(gap, Gap, m_fields.gap, thickness())
  VDM_SHEET_METAL_LENGTH(extension, Extension, m_fields.extension, thickness())
};

struct VDM_DB_EXPORT VdmSheetMetalHemFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsReported;
  VdmSheetMetalGuardedLength gap{{0.0002}};
};

/// Hems: the gap within.
class VDM_DB_EXPORT VdmSheetMetalContextHemOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalHemFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_LENGTH(gap, Gap, m_fields.gap, thickness())
};

struct VDM_DB_EXPORT VdmSheetMetalJunctionFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsReported;
  VdmSheetMetalLength gap{0.001};
  OdLong alignment = 0;  ///< VdmJunctionAlignmentToReliefType
};

/// Junctions of flanges.
class VDM_DB_EXPORT VdmSheetMetalContextJunctionOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalJunctionFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_LENGTH(gap, Gap, m_fields.gap, thickness())
  [[nodiscard]] VdmJunctionAlignmentToReliefType alignmentToReliefType() const;
  void setAlignmentToReliefType(VdmJunctionAlignmentToReliefType type);
};

// ---- Form features

struct VDM_DB_EXPORT VdmSheetMetalRibFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsSilent;
  VdmSheetMetalLenientLength profileRadius{{2.0}};
  VdmSheetMetalLenientLength roundRadius{{1.0}};
  VdmSheetMetalFilletRadius filletRadius{{{5.0}}};
};

/// Ribs. The fillet radius relates to the profile radius.
class VDM_DB_EXPORT VdmSheetMetalContextRibOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalRibFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_LENGTH(profileRadius, ProfileRadius, m_fields.profileRadius, thickness())
  VDM_SHEET_METAL_LENGTH(roundRadius, RoundRadius, m_fields.roundRadius, thickness())

  [[nodiscard]] VdmRibFilletRadiusType filletRadiusType() const;
  [[nodiscard]] double filletRadiusAbsoluteValue() const;
  [[nodiscard]] double filletRadiusProfileRatio() const;
  OdResult setFilletRadiusAbsoluteValue(double value);
  OdResult setFilletRadiusProfileRatio(double value);
};

struct VDM_DB_EXPORT VdmSheetMetalTabFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsSilent;
  OdLong slotNumber = 3;
  VdmSheetMetalLenientLength chamferDistance{{0.1}};
  VdmSheetMetalLenientLength clearance{{0.1}};
  VdmSheetMetalLenientLength distance{{5.0}};
  OdLong edgeType = 0;  ///< VdmTabEdgeType
  VdmSheetMetalLenientLength height{{1.0}};
  VdmSheetMetalLenientLength length{{4.0}};
  VdmSheetMetalLenientLength filletRadius{{0.1}};
};

/// Tabs and their slots. The fillet radius has "roundRadius" in its keys.
class VDM_DB_EXPORT VdmSheetMetalContextTabOption
    : public VdmSheetMetalContextOptionByThickness<VdmSheetMetalTabFields> {
 public:
  using VdmSheetMetalContextOptionByThickness::VdmSheetMetalContextOptionByThickness;
  VDM_SHEET_METAL_LENGTH(height, Height, m_fields.height, thickness())
  VDM_SHEET_METAL_LENGTH(distance, Distance, m_fields.distance, thickness())
  VDM_SHEET_METAL_LENGTH(length, Length, m_fields.length, thickness())
  VDM_SHEET_METAL_LENGTH(clearance, Clearance, m_fields.clearance, thickness())
  VDM_SHEET_METAL_LENGTH(filletRadius, FilletRadius, m_fields.filletRadius, thickness())
  VDM_SHEET_METAL_LENGTH(chamferDistance, ChamferDistance, m_fields.chamferDistance, thickness())

  [[nodiscard]] int slotNumber() const { return m_fields.slotNumber; }
  /// 5 below 0.
  OdResult setSlotNumber(int number);
  [[nodiscard]] VdmTabEdgeType edgeType() const;
  void setEdgeType(VdmTabEdgeType type);
};

// ---- Unfolding

struct VDM_DB_EXPORT VdmSheetMetalUnfoldingFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsSilent;
  OdString bendTablePath;
  OdLong formFeatureMode = 4;  ///< VdmFormFeatureUnfoldingMode
  double dieWidth = -1.0;
  double kFactor = 0.27324;
  double relativeBendDeduction = 2.4;
};

/// What unfolding computes with.
class VDM_DB_EXPORT VdmSheetMetalContextUnfoldingOption
    : public VdmSheetMetalContextOptionOf<VdmSheetMetalUnfoldingFields> {
 public:
  [[nodiscard]] double kFactorValue() const { return m_fields.kFactor; }
  /// 5 outside 0 to 1.
  OdResult setKFactorValue(double value);
  /// Of hems.
  [[nodiscard]] double relativeBendDeduction() const { return m_fields.relativeBendDeduction; }
  /// 5 above 10 and for NaN.
  OdResult setRelativeBendDeduction(double value);
  /// As given; VdmDbSheetMetalContext::loadBendTable finds the file.
  [[nodiscard]] OdString bendTableRelativePath() const { return m_fields.bendTablePath; }
  void setBendTableRelativePath(const OdString& path);
  /// Of the vee die, in drawing units; -1.0 for none.
  [[nodiscard]] double dieWidthValue() const { return m_fields.dieWidth; }
  /// 5 unless above 0 or exactly -1.0.
  OdResult setDieWidthValue(double value);
  [[nodiscard]] VdmFormFeatureUnfoldingMode formFeatureUnfoldingMode() const;
  void setFormFeatureUnfoldingMode(VdmFormFeatureUnfoldingMode mode);
};

struct VDM_DB_EXPORT VdmSheetMetalLoftedBendFields {
  static constexpr VdmWithoutSettings kWithoutSettings = VdmWithoutSettings::kIsSilent;
  OdLong numberSamples = 10;
};

/// Lofted bends.
class VDM_DB_EXPORT VdmSheetMetalContextLoftedBendOption
    : public VdmSheetMetalContextOptionOf<VdmSheetMetalLoftedBendFields> {
 public:
  [[nodiscard]] int loftedBendNumberSamples() const { return m_fields.numberSamples; }
  /// 5 below 1.
  OdResult setLoftedBendNumberSamples(int number);
};

#undef VDM_SHEET_METAL_LENGTH
#undef VDM_SHEET_METAL_OWN_LENGTH
