// Options of sheet metal: random edits against a plain model, and where an option is particular.
#include <cmath>
#include <limits>
#include <random>

#include "tests/support/test_seed.h"
#include "tests/vdm_db/sheet_metal/sheet_metal_testing.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double number(const SheetValues& values, const char* key) {
  return std::get<double>(values.at(key));
}
int integer(const SheetValues& values, const char* key) { return std::get<int>(values.at(key)); }

// ---- Edits at random

// One edit of a context and of the model beside it; both say whether they took the value.
using Edit = bool (*)(Sheet&, SheetValues&, double);

template <class T>
bool put(SheetValues& values, const char* key, bool takes, T value) {
  if (takes) values[key] = value;
  return takes;
}

#define SHEET_EDIT(call, taken, key, value)                                       \
  [](Sheet& s, SheetValues& m, double v) {                                        \
    const bool isTaken = put(m, key, taken, value);                               \
    EXPECT_EQ((call), static_cast<OdResult>(isTaken ? 0 : 5)) << key << " " << v; \
    return isTaken;                                                               \
  }

const Edit kEdits[] = {
    SHEET_EDIT(s.optionForWriteThickness().setValue(v), v > 0, "Thickness", v),
    SHEET_EDIT(s.optionForWriteTab().setSlotNumber(static_cast<int>(v)), static_cast<int>(v) >= 0,
               "TabParameters.slotNumber", static_cast<int>(v)),
    SHEET_EDIT(s.optionForWriteLoftedBend().setLoftedBendNumberSamples(static_cast<int>(v)),
               static_cast<int>(v) >= 1, "LoftedBendParameters.NumberSamples", static_cast<int>(v)),
    SHEET_EDIT(s.optionForWriteUnfolding().setKFactorValue(v), v >= 0 && v <= 1, "kFactor", v),
    SHEET_EDIT(s.optionForWriteUnfolding().setDieWidthValue(v), v > 0 || v == -1.0, "VeeDieWidth",
               v),
    SHEET_EDIT(s.optionForWriteUnfolding().setRelativeBendDeduction(v * 4), v * 4 <= 10,
               "HemRelativeBendDeduction", v * 4),
    SHEET_EDIT((s.optionForWriteUnfolding().setBendTableRelativePath(L"t.csv"), eOk), true,
               "BendTablePath", std::string("t.csv")),
    SHEET_EDIT((s.optionForWriteJunction().setAlignmentToReliefType(
                    static_cast<VdmJunctionAlignmentToReliefType>(7)),
                eOk),
               true, "JunctionAlignmentParameters.type", 7),
    SHEET_EDIT((s.optionForWriteTab().setEdgeType(static_cast<VdmTabEdgeType>(-3)), eOk), true,
               "TabParameters.edgeType", -3),
    SHEET_EDIT((s.optionForWriteUnfolding().setFormFeatureUnfoldingMode(
                    static_cast<VdmFormFeatureUnfoldingMode>(9)),
                eOk),
               true, "FormFeatureUnfoldingMode", 9),
    SHEET_EDIT((s.optionForWriteRelief().setCornerReliefDiameterStoredAbsoluteValue(v), eOk), true,
               "CornerReliefDiameterParameters.storedValue", v),
    SHEET_EDIT(s.optionForWriteMiter().setExtensionRatio(v), v > 0,
               "FlangeSplitExtensionParameters.value", v),
};
#undef SHEET_EDIT

bool editCorner(Sheet& s, SheetValues& m, double v) {
  VdmSheetMetalContextReliefOption& relief = s.optionForWriteRelief();
  const bool automatic = v < -1;
  if (automatic) relief.setCornerReliefDiameterAutoMode();
  const bool taken = automatic || relief.setCornerReliefDiameterAbsoluteValue(v) == eOk;
  EXPECT_EQ(taken, automatic || v > 0);
  if (!taken) return false;
  m["CornerReliefDiameterParameters.value"] = automatic ? -1.0 : v;
  if (!automatic) m["CornerReliefDiameterParameters.storedValue"] = v;
  m["CornerReliefDiameterParameters.type"] = automatic ? 0 : 1;
  return true;
}

bool editFillet(Sheet& s, SheetValues& m, double v) {
  const bool absolute = v > 1;
  VdmSheetMetalContextRibOption& rib = s.optionForWriteRib();
  const OdResult result =
      absolute ? rib.setFilletRadiusAbsoluteValue(v) : rib.setFilletRadiusProfileRatio(v);
  EXPECT_EQ(result, static_cast<OdResult>(v > 0 ? 0 : 5));
  if (result != eOk) return false;
  m["RibParameters.filletRadiusValue"] = v;
  m["RibParameters.filletRadiusType"] = absolute ? 1 : 0;
  return true;
}

bool editLength(Sheet& s, SheetValues& m, double v, const SheetLength& length, bool absolute) {
  const bool takesAll = std::string(length.value) == "BendLineExtentParameters.value";
  const bool taken = takesAll || v > 0;
  EXPECT_EQ((absolute ? length.setAbsolute : length.setRatio)(s, v),
            static_cast<OdResult>(taken ? 0 : 5));
  if (!taken) return false;
  m[length.value] = v;
  m[length.type] = absolute ? 1 : 0;
  return true;
}

// What a length reads as, computed from the model alone.
void expectReadings(Sheet& s, const SheetValues& m) {
  const double thickness = number(m, "Thickness");
  for (const SheetLength& length : sheetLengths()) {
    SCOPED_TRACE(length.value);
    const double value = number(m, length.value);
    const bool absolute = integer(m, length.type) == 1;
    EXPECT_EQ(length.absolute(s), absolute ? value : value * thickness);
    EXPECT_EQ(length.ratio(s), absolute ? value / thickness : value);
  }
  const double profile = number(m, "RibParameters.profileRadiusValue") *
                         (integer(m, "RibParameters.profileRadiusType") == 1 ? 1 : thickness);
  const double fillet = number(m, "RibParameters.filletRadiusValue");
  const bool absolute = integer(m, "RibParameters.filletRadiusType") == 1;
  EXPECT_EQ(s.optionForReadRib().filletRadiusAbsoluteValue(), absolute ? fillet : fillet * profile);
  EXPECT_EQ(s.optionForReadRib().filletRadiusProfileRatio(), absolute ? fillet / profile : fillet);
  EXPECT_EQ(s.optionForReadRelief().cornerReliefDiameterAbsoluteValue(),
            number(m, "CornerReliefDiameterParameters.value"));
}

// Settings on the class of drawings while it lives.
class Settings {
 public:
  Settings() { OdDbDatabase::desc()->addX(VdmDbISettings::desc(), m_settings); }
  ~Settings() { OdDbDatabase::desc()->delX(VdmDbISettings::desc()); }
  VdmDbDefaultSettings::Values* operator->() { return &m_settings->values; }

 private:
  OdSmartPtr<VdmDbDefaultSettings> m_settings{new OdRxObjectImpl<VdmDbDefaultSettings>,
                                              kOdRxObjAttach};
};

class VdmSheetMetalOptions : public SheetMetalTest {
 protected:
  void editAtRandom(SheetValues& model) {
    const SheetPtr context = editSheet();
    const double v = std::uniform_int_distribution<>(-8, 16)(m_random) * 0.25;
    const std::size_t lengths = sheetLengths().size() * 2;
    std::size_t choice = m_random() % (lengths + std::size(kEdits) + 2);
    if (choice < lengths) {
      editLength(*context, model, v, sheetLengths()[choice / 2], choice % 2 == 1);
    } else if ((choice -= lengths) < std::size(kEdits)) {
      kEdits[choice](*context, model, v);
    } else {
      (choice == std::size(kEdits) ? editCorner : editFillet)(*context, model, v);
    }
  }
  std::mt19937 m_random{freshSeed()};
};

TEST_F(VdmSheetMetalOptions, EditsAtRandomLeaveWhatAPlainModelHolds) {
  std::vector<SheetValues> steps{newSheet()};  // the states that undo leads back through
  for (int round = 0; round < 400; ++round) {
    const bool reloads = round % 50 == 49;
    if (reloads) {
      reopenSheet();
      steps = {steps.back()};
    } else {
      SheetValues model = steps.back();
      m_drawing->startUndoRecord();
      editAtRandom(model);
      // A refused edit opened the context for write all the same, which undo takes for a change.
      steps.push_back(model);
      if (round % 7 == 6) {
        ASSERT_EQ(m_drawing->undo(), eOk);
        ASSERT_EQ(values(), steps[steps.size() - 2]);
        ASSERT_EQ(m_drawing->redo(), eOk);
      }
    }
    ASSERT_EQ(values(), steps.back());
    expectReadings(*editSheet(), steps.back());
    if (HasFailure()) return;
  }
  const SheetPtr copy = Sheet::createObject();
  copy->copyFrom(sheet().get());
  EXPECT_EQ(valuesOf(*copy), steps.back());
  const SheetPtr taken = Sheet::createObject();
  taken->copyParameters(sheet());
  EXPECT_EQ(valuesOf(*taken), steps.back());
}

// ---- Defaults

TEST_F(VdmSheetMetalOptions, DefaultsComeOfTheProgramAndWithoutItAreTheFallbacks) {
  EXPECT_EQ(values(), newSheet());
  SheetValues fallbacks = newSheet();
  fallbacks["BendRadius"] = 1.0;
  editSheet()->optionForWriteMiter().setExtensionAbsoluteValue(9.0);
  editSheet()->initDefaultParameters(nullptr);
  EXPECT_EQ(values(), fallbacks);
  EXPECT_EQ(m_assertions, std::vector<std::string>(6, "0")) << "six options report it";
  EXPECT_EQ(editSheet()->optionForWriteHem().setDefaultValue(nullptr), 417);
  EXPECT_EQ(editSheet()->optionForWriteTab().setDefaultValue(nullptr), 417);
  EXPECT_EQ(m_assertions.size(), 7u) << "the hem reports it, the tab does not";

  Settings settings;
  editSheet()->optionForWriteUnfolding().setBendTableRelativePath(L"old");
  editSheet()->initDefaultParameters(m_drawing);
  EXPECT_EQ(values(), fallbacks) << "the program's own values are the fallbacks, too";
  EXPECT_EQ(VdmDbISettings::instance()->kFactor(), 0.27324);

  int next = 0;  // another number for each setting
#define VDM_SETTING(Kind, getter, fallback) \
  settings->getter = static_cast<Kind>((next += 2) + (std::is_same_v<Kind, double> ? 0.75 : 0.0));
#include "vdm_db/sheet_metal/vdm_db_isettings_rows.inc"
#undef VDM_SETTING
  editSheet()->initDefaultParameters(m_drawing);
  EXPECT_EQ(values(), sheetOf(*settings.operator->()));
}

TEST_F(VdmSheetMetalOptions, SettingsThatMeanMoreThanTheirValue) {
  Settings settings;
  const auto init = [this] { editSheet()->initDefaultParameters(m_drawing); };
  for (const int mode : {0, 1, 2, 3, 4, 5}) {
    settings->bendRadiusMode = mode;
    init();
    EXPECT_EQ(integer(values(), "BendRadiusType"), mode % 2);
    EXPECT_EQ(sheet()->optionForReadBendRadius().canOverrideInSmConvert(), mode == 2 || mode == 3);
  }
  const std::tuple<double, double, double, int> corners[] = {
      {-4, -1, 0, 0}, {2.5, 2.5, 2.5, 1}, {0, -1, 0, 0}};
  for (const auto& [setting, value, stored, type] : corners) {
    settings->cornerReliefDiameter = setting;
    init();
    EXPECT_EQ(number(values(), "CornerReliefDiameterParameters.value"), value);
    EXPECT_EQ(number(values(), "CornerReliefDiameterParameters.storedValue"), stored);
    EXPECT_EQ(integer(values(), "CornerReliefDiameterParameters.type"), type);
  }
  for (const double radius : {0.9, 1.9, 1e300, kNan}) {
    settings->tabRoundRadius = radius;
    init();
    EXPECT_EQ(integer(values(), "TabParameters.roundRadiusType"), radius == 1.9 ? 1 : 0);
  }
}

// ---- Where an option is particular

TEST_F(VdmSheetMetalOptions, RelationsThatAFileBroughtAreReportedAndReadAsTheValue) {
  const SheetPtr context = editSheet();
  const auto bring = [&](const char* key, OdLong type) {
    const_cast<VdmProperties&>(context->sheetMetalProperties()).setProperty(OdString(key), type);
  };
  for (const SheetLength& length : sheetLengths()) {
    SCOPED_TRACE(length.value);
    const std::string key = length.type;
    const bool lenient = key.starts_with("Rib") || key.starts_with("Tab");
    const double value = number(valuesOf(*context), length.value);
    bring(length.type, 2);
    m_assertions.clear();
    EXPECT_EQ(length.absolute(*context), value);
    EXPECT_EQ(m_assertions.size(), 1u);
    EXPECT_EQ(length.ratio(*context), value);
    EXPECT_EQ(m_assertions.size(), lenient ? 1u : 2u);
  }
  bring("RibParameters.profileRadiusType", 0);
  bring("RibParameters.filletRadiusType", 5);
  m_assertions.clear();
  EXPECT_EQ(context->optionForReadRib().filletRadiusAbsoluteValue(), 5.0);
  EXPECT_EQ(context->optionForReadRib().filletRadiusProfileRatio(), 5.0);
  EXPECT_TRUE(m_assertions.empty());
  // No thickness, no ratio.
  context->optionForWriteHem().setGapAbsoluteValue(3);
  const_cast<VdmProperties&>(context->sheetMetalProperties()).setProperty(L"Thickness", 0.0);
  EXPECT_EQ(context->optionForReadHem().gapRatio(), 0.0);
}

TEST_F(VdmSheetMetalOptions, RefusalsLeaveTheValueAndHemsReportThem) {
  const SheetPtr context = editSheet();
  const double refused[] = {0.0, -1.0, kNan};
  for (const SheetLength& length : sheetLengths()) {
    SCOPED_TRACE(length.value);
    const std::string key = length.value;
    if (key.starts_with("BendLine")) continue;
    for (const double value : refused) {
      m_assertions.clear();
      EXPECT_EQ(length.setAbsolute(*context, value), 5);
      EXPECT_EQ(length.setRatio(*context, value), 5);
      EXPECT_EQ(m_assertions.size(), key.starts_with("Hem") ? 2u : 0u);
    }
  }
  EXPECT_EQ(context->optionForWriteThickness().setValue(kNan), 5);
  EXPECT_EQ(context->optionForWriteUnfolding().setDieWidthValue(kNan), 5);
  EXPECT_EQ(context->optionForWriteUnfolding().setKFactorValue(1.0000001), 5);
  EXPECT_EQ(context->optionForWriteUnfolding().setRelativeBendDeduction(10.5), 5);
  EXPECT_EQ(context->optionForWriteUnfolding().setRelativeBendDeduction(kNan), eOk);
  EXPECT_EQ(context->optionForWriteUnfolding().setRelativeBendDeduction(-100.0), eOk);
  EXPECT_EQ(context->optionForWriteUnfolding().setRelativeBendDeduction(2.4), eOk);
  EXPECT_EQ(valuesOf(*context), newSheet());
  m_assertions.clear();
  EXPECT_EQ(context->optionForWriteHem().copyFrom(&context->optionForReadRib()), 417);
  EXPECT_EQ(context->optionForWriteHem().copyFrom(nullptr), 417);
  EXPECT_EQ(m_assertions, std::vector<std::string>(2, "0"));
  VdmSheetMetalContextThicknessOption alone;
  EXPECT_EQ(alone.setValue(3), eOk);
  EXPECT_EQ(alone.value(), 3);
  EXPECT_EQ(m_assertions.back(), "m_pProperties");
}

}  // namespace
