// `vdm config list|find|export`: tables of configurations.
#include "host/cli/config_command.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/parameter_changes.h"
#include "host/parameters/configurations.h"
#include "host/rendering/whole_file.h"
#include "vdm_db/features/vdm_feature.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using Align = TextTable::Align;
using vdm_host::CellDifference;
using vdm_host::ConfigurationState;

constexpr std::size_t kMostNearest = 3;  ///< rows that are shown when none fits

std::string nameOf(const OdDbObjectId& feature) { return str(VdmFeature::open(feature)->name()); }

Json stateJson(const OdDbObjectId& feature, const ConfigurationState& state) {
  Json rows = Json::array();
  for (const auto& row : state.rows) {
    rows.push_back({{"name", str(row.name)}, {"differences", row.numDifferences}});
  }
  Json columns = Json::array();
  for (const auto& column : state.columns) {
    columns.push_back({{"name", str(column.name)},
                       {"parameter", str(column.parameter)},
                       {"present", str(column.present)},
                       {"driven", column.isDriven}});
  }
  return {{"table", nameOf(feature)},        {"handle", handleOf(feature)},
          {"selected", str(state.selected)}, {"custom", state.isCustom},
          {"columns", std::move(columns)},   {"rows", std::move(rows)}};
}

std::string stateText(const OdDbObjectId& feature, const ConfigurationState& state) {
  std::string text = "table " + quote(nameOf(feature)) + ": " +
                     counted(state.rows.size(), "configuration") + ", selected " +
                     quote(state.selected.utf8()) + (state.isCustom ? ", none applies" : "") + "\n";
  TextTable columns(
      {{"COLUMN", Align::kLeft}, {"PARAMETER", Align::kLeft}, {"PRESENT", Align::kRight}}, "  ");
  for (const auto& column : state.columns) {
    const std::string present = oneLine(column.present.utf8());
    columns.addRow({oneLine(column.name.utf8()),
                    column.parameter.isEmpty() ? "(no link)" : str(column.parameter),
                    column.isDriven ? present + " (driven)" : present});
  }
  text += columns.text();
  TextTable rows({{"CONFIGURATION", Align::kLeft}, {"DIFFERS IN", Align::kRight}}, "  ");
  for (const auto& row : state.rows) {
    rows.addRow({oneLine(row.name.utf8()),
                 row.numDifferences == 0 ? "" : counted(row.numDifferences, "cell")});
  }
  return text + rows.text();
}

// ---- Finding

struct Nearest {
  std::string name;
  std::vector<CellDifference> differences;
};

/// The rows to show: those that fit, or the nearest ones.
std::vector<Nearest> nearestOf(const OdDbObjectId& feature, const ConfigurationState& state) {
  std::vector<Nearest> nearest;
  for (const std::size_t row : vdm_host::nearestRows(state)) {
    const bool fits = state.rows[row].numDifferences == 0;
    if (!fits && nearest.size() == kMostNearest) break;
    nearest.push_back({str(state.rows[row].name), vdm_host::differencesOf(feature, row)});
  }
  return nearest;
}

Json nearestJson(const std::vector<Nearest>& nearest) {
  Json list = Json::array();
  for (const Nearest& row : nearest) {
    Json cells = Json::array();
    for (const CellDifference& cell : row.differences) {
      cells.push_back(
          {{"column", str(cell.column)}, {"cell", str(cell.cell)}, {"present", str(cell.present)}});
    }
    list.push_back({{"name", row.name}, {"differences", std::move(cells)}});
  }
  return list;
}

std::string nearestText(const std::vector<Nearest>& nearest) {
  std::string text;
  for (const Nearest& row : nearest) {
    if (row.differences.empty()) {
      text += "it is " + quote(row.name) + "\n";
      continue;
    }
    text += (text.empty() ? "no configuration fits; nearest " : "and ") + quote(row.name) + ":\n";
    for (const CellDifference& cell : row.differences) {
      text += "  " + str(cell.column) + " is " + oneLine(cell.present.utf8()) + ", there " +
              oneLine(cell.cell.utf8()) + "\n";
    }
  }
  return text.empty() ? "the table has no configurations\n" : text;
}

}  // namespace

int runConfigList(const SessionSettings& settings, const ConfigOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead,
                              Modules::kRequired);
  const OdDbObjectId block = findBlock(*drawing, options.block);
  Json tables = Json::array();
  std::string text;
  for (const OdDbObjectId& feature : vdm_host::configurationsOf(block)) {
    const ConfigurationState state = vdm_host::configurationState(feature);
    tables.push_back(stateJson(feature, state));
    text += stateText(feature, state);
  }
  printResult(
      settings,
      [&] {
        return Json{{"file", options.input}, {"tables", std::move(tables)}};
      },
      [&] { return text.empty() ? options.input + " has no configurations\n" : text; });
  return kDone;
}

int runConfigFind(const SessionSettings& settings, const ConfigOptions& options) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead,
                              Modules::kRequired);
  const OdDbObjectId feature =
      findConfigurationTable(findBlock(*drawing, options.block), options.table);
  const ConfigurationState state = vdm_host::configurationState(feature);
  const std::vector<Nearest> nearest = nearestOf(feature, state);
  const bool fits = !nearest.empty() && nearest.front().differences.empty();
  printResult(
      settings,
      [&] {
        return Json{{"file", options.input},
                    {"table", nameOf(feature)},
                    {"fits", fits},
                    {"nearest", nearestJson(nearest)}};
      },
      [&] { return nearestText(nearest); });
  return kDone;
}

int runConfigExport(const SessionSettings& settings, const ConfigOptions& options) {
  const OdNameClaim claim = claimOutput(options.output, {options.input});
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead,
                              Modules::kRequired);
  const OdDbObjectId feature =
      findConfigurationTable(findBlock(*drawing, options.block), options.table);
  vdm_host::TableSheet sheet;
  const OdStatus status = vdm_host::exportConfigurations(feature, sheet);
  if (!status.ok()) throw CliError(str(status.text));
  const std::string failure =
      rendering::writeWholeFile(options.output.path, vdm_host::writeTable(sheet));
  if (!failure.empty()) throw CliError(failure);
  printResult(
      settings,
      [&] {
        return Json{{"file", options.input},
                    {"output", options.output.path},
                    {"rows", sheet.rows - 1},
                    {"columns", sheet.columns}};
      },
      [&] {
        return "wrote " + counted(sheet.rows - 1, "configuration") + " to " + options.output.path +
               "\n";
      });
  return kDone;
}

}  // namespace cli
