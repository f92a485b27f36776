// Sheet-metal contexts in drawings, and a plain model of their options.
#include "tests/vdm_db/sheet_metal/sheet_metal_testing.h"

namespace {

// Key, value of a new context, value that the settings give.
struct SheetRow {
  const char* key;
  SheetValue fresh;
  SheetValue fromSettings;
};

std::vector<SheetRow> sheetRows(const VdmDbDefaultSettings::Values& v) {
  return {
      {"Thickness", 2.0, v.sheetMetalThickness},
      {"BendRadius", 2.0, v.bendRadiusValue},
      {"BendRadiusType", 0, v.bendRadiusMode % 2},
      {"BendReliefParameters.width", 0.5, v.bendReliefWidth},
      {"BendReliefParameters.type", 0, v.bendReliefWidthType},
      {"BendReliefParameters.extension", 0.1, v.reliefExtension},
      {"BendReliefParameters.extensionType", 0, v.reliefExtensionType},
      {"CornerReliefDiameterParameters.value", -1.0, v.cornerReliefDiameter},
      {"CornerReliefDiameterParameters.storedValue", 0.0, v.cornerReliefDiameter},
      {"CornerReliefDiameterParameters.type", 0, 1},
      {"FlangeSplitGapParameters.value", 0.1, v.flangeSplitGap},
      {"FlangeSplitGapParameters.type", 0, v.flangeSplitGapType},
      {"FlangeSplitExtensionParameters.value", 0.1, v.flangeSplitExtension},
      {"HemParameters.gapValue", 0.0002, v.hemGap},
      {"HemParameters.gapType", 0, v.hemGapType},
      {"JunctionGapParameters.value", 0.001, v.junctionGap},
      {"JunctionGapParameters.type", 0, v.junctionGapType},
      {"JunctionAlignmentParameters.type", 0, v.junctionAlignmentType},
      {"BendLineExtentParameters.value", 0.25, v.bendLineExtent},
      {"BendLineExtentParameters.type", 0, v.bendLineExtentType},
      {"RibParameters.profileRadiusValue", 2.0, v.ribProfileRadius},
      {"RibParameters.profileRadiusType", 0, v.ribProfileRadiusType},
      {"RibParameters.roundRadiusValue", 1.0, v.ribRoundRadius},
      {"RibParameters.roundRadiusType", 0, v.ribRoundRadiusType},
      {"RibParameters.filletRadiusValue", 5.0, v.ribFilletRadius},
      {"RibParameters.filletRadiusType", 0, v.ribFilletRadiusType},
      {"TabParameters.slotNumber", 3, v.tabSlotNumber},
      {"TabParameters.chamferDistanceType", 0, v.tabChamferDistanceType},
      {"TabParameters.chamferDistanceValue", 0.1, v.tabChamferDistance},
      {"TabParameters.clearanceType", 0, v.tabClearanceType},
      {"TabParameters.clearanceValue", 0.1, v.tabClearance},
      {"TabParameters.distanceType", 0, v.tabDistanceType},
      {"TabParameters.distanceValue", 5.0, v.tabDistance},
      {"TabParameters.edgeType", 0, v.tabEdgeType},
      {"TabParameters.heightType", 0, v.tabHeightType},
      {"TabParameters.heightValue", 1.0, v.tabHeight},
      {"TabParameters.lengthType", 0, v.tabLengthType},
      {"TabParameters.lengthValue", 4.0, v.tabLength},
      {"TabParameters.roundRadiusType", 0, static_cast<int>(v.tabRoundRadius)},
      {"TabParameters.roundRadiusValue", 0.1, v.tabRoundRadius},
      {"SharpBendRadiusLimit", 5.0, v.sharpBendRadiusLimit},
      {"SharpBendRadiusType", 0, 0},
      {"BendTablePath", "", ""},
      {"FormFeatureUnfoldingMode", 4, v.formFeatureUnfoldingMode},
      {"VeeDieWidth", -1.0, -1.0},
      {"kFactor", 0.27324, v.kFactor},
      {"HemRelativeBendDeduction", 2.4, v.hemRelativeBendDeduction},
      {"LoftedBendParameters.NumberSamples", 10, v.loftedBendNumberSamples},
  };
}

}  // namespace

SheetValues newSheet() {
  SheetValues values;
  for (const SheetRow& row : sheetRows({})) values[row.key] = row.fresh;
  return values;
}

SheetValues sheetOf(const VdmDbDefaultSettings::Values& settings) {
  SheetValues values;
  for (const SheetRow& row : sheetRows(settings)) values[row.key] = row.fromSettings;
  return values;
}

SheetValues valuesOf(const Sheet& context) {
  SheetValues values;
  for (const auto& [key, data] : context.sheetMetalProperties()) {
    const VdmProperties& bag = context.sheetMetalProperties();
    double number = 0;
    OdLong integer = 0;
    OdString text;
    SheetValue& value = values[std::string(key.utf8())];
    if (bag.getProperty(key, number)) value = number;
    if (bag.getProperty(key, integer)) value = integer;
    if (bag.getProperty(key, text)) value = std::string(text.utf8());
  }
  values.erase("ThicknessVar");
  return values;
}

const std::vector<SheetLength>& sheetLengths() {
// `absolute` and `ratio` are spelled out, since those of a lone length have no prefix.
#define SHEET_LENGTH(value, type, Option, Set, absolute, ratio)                                   \
  {                                                                                               \
    value, type,                                                                                  \
        [](Sheet& s, double v) { return s.optionForWrite##Option().set##Set##AbsoluteValue(v); }, \
        [](Sheet& s, double v) { return s.optionForWrite##Option().set##Set##Ratio(v); },         \
        [](Sheet& s) { return s.optionForWrite##Option().absolute(); },                           \
        [](Sheet& s) { return s.optionForWrite##Option().ratio(); }                               \
  }
  static const std::vector<SheetLength> lengths{
      SHEET_LENGTH("BendRadius", "BendRadiusType", BendRadius, , absoluteValue, ratio),
      SHEET_LENGTH("BendLineExtentParameters.value", "BendLineExtentParameters.type",
                   BendLineExtent, , absoluteValue, ratio),
      SHEET_LENGTH("SharpBendRadiusLimit", "SharpBendRadiusType", SharpBendRadiusLimit, ,
                   absoluteValue, ratio),
      SHEET_LENGTH("BendReliefParameters.width", "BendReliefParameters.type", Relief,
                   BendReliefWidth, bendReliefWidthAbsoluteValue, bendReliefWidthRatio),
      SHEET_LENGTH("BendReliefParameters.extension", "BendReliefParameters.extensionType", Relief,
                   Extension, extensionAbsoluteValue, extensionRatio),
      SHEET_LENGTH("FlangeSplitGapParameters.value", "FlangeSplitGapParameters.type", Miter, Gap,
                   gapAbsoluteValue, gapRatio),
      SHEET_LENGTH("HemParameters.gapValue", "HemParameters.gapType", Hem, Gap, gapAbsoluteValue,
                   gapRatio),
      SHEET_LENGTH("JunctionGapParameters.value", "JunctionGapParameters.type", Junction, Gap,
                   gapAbsoluteValue, gapRatio),
      SHEET_LENGTH("RibParameters.profileRadiusValue", "RibParameters.profileRadiusType", Rib,
                   ProfileRadius, profileRadiusAbsoluteValue, profileRadiusRatio),
      SHEET_LENGTH("RibParameters.roundRadiusValue", "RibParameters.roundRadiusType", Rib,
                   RoundRadius, roundRadiusAbsoluteValue, roundRadiusRatio),
      SHEET_LENGTH("TabParameters.chamferDistanceValue", "TabParameters.chamferDistanceType", Tab,
                   ChamferDistance, chamferDistanceAbsoluteValue, chamferDistanceRatio),
      SHEET_LENGTH("TabParameters.clearanceValue", "TabParameters.clearanceType", Tab, Clearance,
                   clearanceAbsoluteValue, clearanceRatio),
      SHEET_LENGTH("TabParameters.distanceValue", "TabParameters.distanceType", Tab, Distance,
                   distanceAbsoluteValue, distanceRatio),
      SHEET_LENGTH("TabParameters.heightValue", "TabParameters.heightType", Tab, Height,
                   heightAbsoluteValue, heightRatio),
      SHEET_LENGTH("TabParameters.lengthValue", "TabParameters.lengthType", Tab, Length,
                   lengthAbsoluteValue, lengthRatio),
      SHEET_LENGTH("TabParameters.roundRadiusValue", "TabParameters.roundRadiusType", Tab,
                   FilletRadius, filletRadiusAbsoluteValue, filletRadiusRatio)};
#undef SHEET_LENGTH
  return lengths;
}
