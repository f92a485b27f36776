// Tables of configurations as users load, select and compare them.
#include "host/parameters/configurations.h"

#include <algorithm>
#include <cmath>
#include <cwchar>

#include "host/parameters/parameter_edit.h"
#include "host/parameters/parameter_query.h"
#include "host/parameters/table_units.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/variable_dimension.h"
#include "platform/base/case_compare.h"
#include "platform/db/database.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_utils/vdmu_reporter.h"

namespace vdm_host {
namespace {

OdStatus refuse(const OdString& text, OdResult code = eInvalidInput) { return {code, text}; }

VdmConfigurationFeaturePtr openFeature(const OdDbObjectId& id,
                                       OdDb::OpenMode mode = OdDb::kForRead) {
  return id.openAs<VdmConfigurationFeature>(mode);
}

VdmDbConfigurationTablePtr tableOf(const VdmConfigurationFeature& feature) {
  return feature.configTableId().openAs<VdmDbConfigurationTable>();
}

OdDbObjectId blockOf(const OdDbObjectId& feature) {
  return feature.ownerId().safeOpenAs<VdmDbFeatureManager>()->blockId();
}

template <class Visit>
void forEachLink(const VdmConfigurationFeature& feature, const Visit& visit) {
  for (const OdDbObjectId& id : feature.reactors()) {
    const auto link = id.openAs<VdmDbConfigVarReactor>();
    if (!link.isNull()) visit(*link);
  }
}

/// All names of rows, for messages.
OdString rowsText(const VdmConfigurationFeature& feature) {
  VdmStringArray names;
  OdString selected;
  static_cast<void>(feature.getConfiguration(names, selected));
  OdString text;
  constexpr OdUInt32 kMostShown = 8;
  for (OdUInt32 i = 0; i < std::min(names.size(), kMostShown); ++i) {
    text += (i == 0 ? L"" : L", ") + names[i];
  }
  return names.size() > kMostShown ? text + L", ..." : text;
}

OdStatus refuseRow(const VdmConfigurationFeature& feature, const OdString& name) {
  return refuse(L"there is no configuration " + name + L", there are " + rowsText(feature),
                eKeyNotFound);
}

}  // namespace

// ---- Finding

std::vector<OdDbObjectId> configurationsOf(const OdDbObjectId& block) {
  std::vector<OdDbObjectId> features;
  const auto manager =
      VdmDbFeatureManager::getInstance(block, /*create=*/false).openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return features;
  for (const OdDbObjectId& id : manager->featureIds()) {
    if (!openFeature(id).isNull()) features.push_back(id);
  }
  return features;
}

OdStatus findConfiguration(const OdDbObjectId& block, const OdString& name, OdDbObjectId& feature) {
  const std::vector<OdDbObjectId> all = configurationsOf(block);
  OdString names;
  std::vector<OdDbObjectId> found;
  for (const OdDbObjectId& id : all) {
    const OdString own = openFeature(id)->name();
    names += (names.isEmpty() ? L"" : L", ") + own;
    if (name.isEmpty() || own.iEquals(name)) found.push_back(id);
  }
  if (found.size() == 1) {
    feature = found.front();
    return {};
  }
  if (all.empty()) return refuse(OdString(L"there is no table of configurations"), eKeyNotFound);
  return refuse(found.empty()
                    ? L"there is no table of configurations " + name + L", there are " + names
                    : OdString().format(L"there are %u tables of configurations, name one: %ls",
                                        static_cast<unsigned>(found.size()), names.c_str()),
                eKeyNotFound);
}

// ---- Loading

namespace {

/// The messages of loading, which speak of rows, for a user who sees lines of a file.
void takeMessages(const VdmuMessageCollector& messages, const TableSheet& sheet,
                  std::vector<OdString>& problems) {
  const bool hasLongRows = sheet.lines.empty() || sheet.lines.back() != sheet.rows;
  for (const auto& message : messages.messages()) {
    OdString text = message.text;
    unsigned row = 0;
    if (hasLongRows && std::swscanf(text.c_str(), L"row %u", &row) == 1 && row >= 1 &&
        row <= sheet.lines.size()) {
      text = OdString().format(L"line %u: ", sheet.lines[row - 1]) + text;
    }
    problems.push_back(message.severity == VdmuSeverity::kWarning ? L"warning: " + text : text);
  }
}

/// The power of length that a dimension is; 0 for another dimension.
int lengthPower(const OdExpression::Dimension& dimension) {
  for (int power = 1; power <= 3; ++power) {
    if (dimension == OdExpression::Dimension::length(power)) return power;
  }
  return 0;
}

/// A row that is selected gives parameters plain numbers. So what they measure, by their present
/// expressions or the headers of the table, is kept beside them.
void noteMeasures(const VdmConfigurationFeature& feature, OdDb::UnitsValue unit,
                  const TableUnits& units) {
  const auto table = tableOf(feature);
  forEachLink(feature, [&](const VdmDbConfigVarReactor& link) {
    const auto column = table->findColumn(link.name());
    const auto variable = link.variable().openAs<OdDbAssocVariable>(OdDb::kForWrite);
    if (link.isStringType() || !column || variable.isNull()) return;
    int power = lengthPower(oddbDimensionOf(*variable));
    const std::size_t place = units.size() == 1 ? 0 : *column + std::size_t{1};
    if (power == 0 && place < units.size() && !units[place].isEmpty()) {
      double factor = 0;
      OdExpression::Dimension dimension;
      OdString error;
      static_cast<void>(readConstant(L"1 " + units[place], unit, factor, dimension, error));
      power = lengthPower(dimension);
    }
    // A constant is a value: as an expression it would count as what drives the parameter.
    if (vdmu::hasConstExpression(variable.get(), /*checkExpression=*/true)) {
      variable->setValue(variable->value().get());
    }
    if (power != 0) VdmAssocVariableExt::cast(variable)->setMeasurementType(power);
  });
}

}  // namespace

OdStatus loadConfigurations(const OdDbObjectId& block, const TableSheet& sheet,
                            const LoadOptions& options, OdDbObjectId& feature,
                            std::vector<OdString>& problems) {
  const OdDb::UnitsValue unit = unitsOfBlock(block);
  VdmStringArray cells = sheet.cells;
  TableUnits units;
  OdStatus status = toBaseUnits(sheet, unit, cells, units, problems);
  if (!status.ok()) return status;
  if (feature.isNull()) {
    const OdDbObjectId manager = VdmDbFeatureManager::getInstance(block, /*create=*/true);
    feature = manager.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
                  ->createFeatureData(VdmConfigurationFeature::desc(), OdString(L"Configurations"),
                                      /*numberGiven=*/false, /*trim=*/true);
  }
  const VdmConfigurationFeaturePtr opened = openFeature(feature, OdDb::kForWrite);
  if (opened.isNull()) return refuse(OdString(L"the feature holds no configurations"));
  VdmuMessageCollector messages;
  const OdResult result =
      opened->setConfigurationTable(block, cells, sheet.rows, sheet.columns, messages,
                                    options.createsParameters, options.promotesKeys);
  takeMessages(messages, sheet, problems);
  if (result != eOk) {
    return refuse(
        OdString().format(L"the table has %u problems", static_cast<unsigned>(problems.size())),
        result);
  }
  storeUnits(opened->configTableId(), units);
  noteMeasures(*opened, unit, units);
  return computeParameters(block);
}

OdStatus exportConfigurations(const OdDbObjectId& feature, TableSheet& sheet) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature);
  TableSheet made;
  if (opened->getConfigurationTable(made.cells, made.rows, made.columns) != eOk) {
    return refuse(OdString(L"the table has no columns"));
  }
  const auto table = tableOf(*opened);
  fromBaseUnits(*table, unitsOfBlock(blockOf(feature)), made);
  sheet = std::move(made);
  return {};
}

// ---- Rows and links

OdStatus selectConfiguration(const OdDbObjectId& feature, const OdString& name) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature, OdDb::kForWrite);
  const auto table = tableOf(*opened);
  if (table.isNull() || !table->findKey(name)) return refuseRow(*opened, name);
  OdResult result = opened->setConfiguration(name);
  if (result != eOk && opened->keyVariable().isNull()) {
    // Values of the only column are its names.
    VdmDbConfigurationTable::RowMap cells;
    static_cast<void>(table->getRow(name, cells));
    forEachLink(*opened, [&](const VdmDbConfigVarReactor& link) {
      const auto cell = cells.find(link.name());
      if (cell == cells.end()) return;
      const auto variable = link.variable().openAs<OdDbAssocVariable>(OdDb::kForWrite);
      if (variable.isNull()) return;
      result = variable->setValue(OdDbEvalVariant::init(cell->second.second));
    });
  }
  if (result != eOk) return refuse(L"configuration " + name + L" cannot be selected", result);
  return computeParameters(blockOf(feature));
}

OdStatus saveConfiguration(const OdDbObjectId& feature, const OdString& name) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature, OdDb::kForWrite);
  const OdResult result = opened->saveConfiguration(name);
  if (result == eOk) return {};
  const auto table = tableOf(*opened);
  const bool isThere = !table.isNull() && table->findKey(name).has_value();
  return refuse(isThere ? L"there is a configuration " + name + L" already"
                        : L"a configuration cannot have the name \"" + name + L"\"",
                result);
}

OdStatus removeConfiguration(const OdDbObjectId& feature, const OdString& name) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature, OdDb::kForWrite);
  return opened->removeConfiguration(name) == eOk ? OdStatus() : refuseRow(*opened, name);
}

namespace {

OdStatus requireColumn(const VdmConfigurationFeature& feature, const OdString& column) {
  const auto table = tableOf(feature);
  if (!table.isNull() && table->hasColumn(column)) return {};
  OdString names = table.isNull() ? OdString() : table->keyColumnName();
  VdmStringArray columns;
  if (!table.isNull()) table->getColumnNames(columns);
  for (const OdString& name : columns) names += L", " + name;
  return refuse(L"there is no column " + column + L", there are " + names, eKeyNotFound);
}

}  // namespace

OdStatus linkColumn(const OdDbObjectId& feature, const OdString& column,
                    const OdString& parameter) {
  const OdDbObjectId block = blockOf(feature);
  const OdDbObjectId variable = findParameter(block, parameter);
  if (variable.isNull()) return refuse(L"there is no parameter " + parameter, eKeyNotFound);
  const VdmConfigurationFeaturePtr opened = openFeature(feature, OdDb::kForWrite);
  if (OdStatus status = requireColumn(*opened, column); !status.ok()) return status;
  const OdResult result = opened->linkColumn(variable, column, /*isString=*/false);
  if (result == eOk) return computeParameters(block);
  const bool isTaken =
      VdmConfigurationFeature::isLinked(variable.safeOpenAs<OdDbAssocVariable>().get(), false);
  return refuse(
      (isTaken ? L"parameter " + parameter : L"column " + column) + L" has a link already", result);
}

OdStatus unlinkColumn(const OdDbObjectId& feature, const OdString& column) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature, OdDb::kForWrite);
  if (OdStatus status = requireColumn(*opened, column); !status.ok()) return status;
  if (opened->unlinkColumn(column) == eOk) return {};
  return refuse(L"column " + column + L" has no link");
}

// ---- State

namespace {

constexpr double kSameNumber = 1e-10;  // as tables compare

/// A linked column as the rows are compared with it.
struct Present {
  OdUInt32 column;
  OdString text;
  double number = 0.0;
  bool isText = false;
};

OdString numberText(double number) { return vdmu::getConstExpression(number); }

/// The values of linked columns that no expression gives; `columns`, which may be null, gets all.
std::vector<Present> presentValues(const VdmConfigurationFeature& feature,
                                   const VdmDbConfigurationTable& table,
                                   std::vector<ConfigurationColumn>* columns) {
  std::vector<Present> present;
  forEachLink(feature, [&](const VdmDbConfigVarReactor& link) {
    const auto column = table.findColumn(link.name());
    Present value{column.value_or(0), {}, 0.0, link.isStringType()};
    if (link.isKey() || !column || link.getVariableValue(value.text, value.number) != eOk) return;
    if (columns != nullptr) {
      ConfigurationColumn& row = (*columns)[*column];
      row.parameter = link.variable().safeOpenAs<OdDbAssocVariable>()->name();
      row.present = value.isText ? value.text : numberText(value.number);
      row.isDriven = !link.isEnabled();
    }
    if (link.isEnabled()) present.push_back(value);
  });
  return present;
}

bool differs(const VdmConfigurationCells& cells, OdUInt32 row, const Present& present) {
  if (!cells.hasCells()) return false;
  const OdUInt32 at = cells.rowStart(row) + present.column;
  if (present.isText) return odStrICmp(cells.texts[at], present.text) != 0;
  return std::abs(cells.numbers[at] - present.number) > kSameNumber;
}

}  // namespace

ConfigurationState configurationState(const OdDbObjectId& feature) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature);
  ConfigurationState state;
  state.selected = opened->selectedConfiguration();
  state.isCustom = state.selected.iEquals(opened->freeConfiguration());
  const auto table = tableOf(*opened);
  if (table.isNull()) return state;
  const VdmConfigurationCells& cells = table->cells();
  for (const OdString& name : cells.columnNames) state.columns.push_back({name, {}, {}});
  const std::vector<Present> present = presentValues(*opened, *table, &state.columns);
  for (OdUInt32 row = 0; row < cells.rows(); ++row) {
    const auto count = std::ranges::count_if(
        present, [&](const Present& value) { return differs(cells, row, value); });
    state.rows.push_back({cells.keys[row], static_cast<std::size_t>(count)});
  }
  return state;
}

std::vector<CellDifference> differencesOf(const OdDbObjectId& feature, std::size_t row) {
  const VdmConfigurationFeaturePtr opened = openFeature(feature);
  const auto table = tableOf(*opened);
  const VdmConfigurationCells& cells = table->cells();
  const auto at = static_cast<OdUInt32>(row);
  std::vector<CellDifference> differences;
  for (const Present& value : presentValues(*opened, *table, /*columns=*/nullptr)) {
    if (!differs(cells, at, value)) continue;
    const OdUInt32 cell = cells.rowStart(at) + value.column;
    differences.push_back({cells.columnNames[value.column],
                           value.isText ? cells.texts[cell] : numberText(cells.numbers[cell]),
                           value.isText ? value.text : numberText(value.number)});
  }
  return differences;
}

std::vector<std::size_t> nearestRows(const ConfigurationState& state) {
  std::vector<std::size_t> nearest;
  std::size_t fewest = ~std::size_t{0};
  for (std::size_t i = 0; i < state.rows.size(); ++i) {
    const std::size_t count = state.rows[i].numDifferences;
    if (count > fewest) continue;
    if (count < fewest) nearest.clear();
    fewest = count;
    nearest.push_back(i);
  }
  return nearest;
}

}  // namespace vdm_host
