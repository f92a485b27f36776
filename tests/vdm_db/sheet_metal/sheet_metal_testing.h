// Sheet-metal contexts in drawings, and a plain model of their options.
#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "tests/support/model_testing.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/sheet_metal/vdm_db_default_settings.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context.h"

using Sheet = VdmDbSheetMetalContext;
using SheetPtr = VdmDbSheetMetalContextPtr;

/// The values of a context by key, as a test writes them down.
using SheetValue = std::variant<double, int, std::string>;
using SheetValues = std::map<std::string, SheetValue>;

/// What a new context holds, written down by hand.
SheetValues newSheet();
/// What the settings of a program make of it, likewise. The diameter of corners is above 0.
SheetValues sheetOf(const VdmDbDefaultSettings::Values& settings);
/// What is in the bag under the keys of the options.
SheetValues valuesOf(const Sheet& context);

/// One length of an option: its keys and its operations.
struct SheetLength {
  const char* value;
  const char* type;
  OdResult (*setAbsolute)(Sheet&, double);
  OdResult (*setRatio)(Sheet&, double);
  double (*absolute)(Sheet&);
  double (*ratio)(Sheet&);
};
const std::vector<SheetLength>& sheetLengths();

/// A drawing whose model space has a context.
class SheetMetalTest : public ModelTest {
 protected:
  SheetMetalTest() : m_context(Sheet::getInstance(m_modelSpace, /*create=*/true)) {}

  [[nodiscard]] SheetPtr sheet() const { return open<Sheet>(m_context); }
  [[nodiscard]] SheetPtr editSheet() const { return edit<Sheet>(m_context); }
  [[nodiscard]] SheetValues values() const { return valuesOf(*sheet()); }
  void reopenSheet() {
    const OdDbHandle handle = m_context.getHandle();
    reopen();
    m_context = m_drawing->getOdDbObjectId(handle);
  }

  OdDbObjectId m_context;
};
