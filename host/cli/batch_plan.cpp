// The rows of a batch, planned in the order of the functions below: what varies, the rows, what
// each sets and gives, the order in which they are computed.
#include "host/cli/batch_plan.h"

#include <algorithm>
#include <map>
#include <set>

#include "host/batch/row_choice.h"
#include "host/batch/row_order.h"
#include "host/batch/sweep.h"
#include "host/cli/model_lookup.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/parameter_changes.h"
#include "host/cli/render_command.h"
#include "host/modeling/component_query.h"
#include "host/modeling/component_size_feature.h"
#include "host/parameters/configurations.h"
#include "host/parameters/parameter_query.h"
#include "vdm_db/features/vdm_feature.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using vdm_host::ParameterAssignment;

constexpr int kRecordVersion = 1;

void require(const OdStatus& status) {
  if (!status.ok()) throw CliError(str(status.text), kWrongUsage);
}

// ---- What varies

/// The table of the batch, when it uses one.
struct Table {
  OdDbObjectId feature;
  std::vector<std::string> names;               ///< of rows
  std::vector<OdString> parameters;             ///< by column; empty for one without a link
  std::vector<std::vector<std::string>> cells;  ///< by column
};

Table tableOf(const OdDbObjectId& feature) {
  const vdm_host::ConfigurationState state = vdm_host::configurationState(feature);
  Table table{feature, {}, {}, {}};
  for (const auto& row : state.rows) table.names.push_back(str(row.name));
  vdm_host::TableSheet sheet;
  if (!vdm_host::exportConfigurations(feature, sheet).ok()) return table;
  const auto first = sheet.columns - static_cast<unsigned>(state.columns.size());
  for (unsigned column = first; column < sheet.columns; ++column) {
    table.parameters.push_back(state.columns[column - first].parameter);
    std::vector<std::string>& cells = table.cells.emplace_back();
    for (unsigned row = 1; row < sheet.rows; ++row) cells.push_back(str(sheet.at(row, column)));
  }
  return table;
}

bool isSweep(const std::string& text) { return text.find('=') != std::string::npos; }

/// A drawing without a table has one row, as it is, unless sweeps are given.
Table findTable(const OdDbObjectId& block, const BatchOptions& options) {
  const bool isNamed = !options.table.empty() || !std::ranges::all_of(options.rows, isSweep);
  const bool isMeant = options.rows.empty() && !vdm_host::configurationsOf(block).empty();
  if (!isNamed && !isMeant) return {};
  return tableOf(findConfigurationTable(block, options.table));
}

// ---- The rows

bool isRowName(const Table& table, const std::string& text) {
  return std::ranges::find(table.names, text) != table.names.end();
}

/// Positions of rows and points of sweeps; an empty position is a row of no table.
struct Choice {
  std::vector<std::size_t> rows;
  std::vector<batch::SweepPoint> points;
};

Choice choose(const Table& table, const BatchOptions& options) {
  Choice choice;
  std::vector<batch::Sweep> sweeps;
  for (const std::string& text : options.rows) {
    if (isSweep(text) && !isRowName(table, text)) {
      require(batch::parseSweep(text, sweeps.emplace_back()));
    } else {
      require(batch::chooseRows(table.names, text, choice.rows));
    }
  }
  const bool isAll = choice.rows.empty() && !table.feature.isNull();
  if (isAll) require(batch::chooseRows(table.names, "all", choice.rows));
  require(batch::multiplySweeps(sweeps, choice.points));
  return choice;
}

std::string nameOfRow(const std::string& configuration, const batch::SweepPoint& point) {
  std::string name = configuration;
  for (const auto& [parameter, value] : point) {
    name += (name.empty() ? "" : ",") + parameter + "=" + value;
  }
  return name.empty() ? "present" : name;
}

std::vector<BatchRow> makeRows(const Table& table, const Choice& choice,
                               const std::vector<ParameterAssignment>& sets) {
  std::vector<BatchRow> rows;
  const std::size_t numRows = std::max<std::size_t>(choice.rows.size(), 1);
  if (numRows * choice.points.size() > batch::kMostPoints) {
    throw CliError("the batch has " + std::to_string(numRows * choice.points.size()) + " rows, " +
                       std::to_string(batch::kMostPoints) + " are allowed",
                   kWrongUsage);
  }
  for (std::size_t i = 0; i < numRows; ++i) {
    for (const batch::SweepPoint& point : choice.points) {
      BatchRow& row = rows.emplace_back();
      if (!choice.rows.empty()) row.configuration = table.names[choice.rows[i]];
      row.name = nameOfRow(row.configuration, point);
      for (const auto& [name, value] : point) {
        row.values.push_back({OdString(name), OdString(value)});
      }
      row.values.insert(row.values.end(), sets.begin(), sets.end());
    }
  }
  return rows;
}

std::vector<ParameterAssignment> readSets(const BatchOptions& options) {
  std::vector<ParameterAssignment> sets;
  for (const std::string& text : options.sets) {
    sets.push_back(vdm_host::parseAssignment(OdString(text)));
    if (sets.back().name.isEmpty() || sets.back().expression.isEmpty()) {
      throw CliError(quote(text) + " is no assignment, write name=expression", kWrongUsage);
    }
  }
  return sets;
}

/// A row that names a parameter which is not there would fail like all others.
void requireParameters(const OdDbObjectId& block, const std::vector<BatchRow>& rows) {
  std::set<std::string> seen;
  for (const ParameterAssignment& value : rows.front().values) {
    if (vdm_host::findParameter(block, value.name).isNull()) {
      throw CliError("there is no parameter " + quote(value.name.utf8()), kWrongUsage);
    }
    if (seen.insert(str(value.name)).second) continue;
    throw CliError("parameter " + quote(value.name.utf8()) + " is set twice", kWrongUsage);
  }
}

// ---- What each gives

/// The template with the row's name and number in it.
std::string filled(const std::string& pattern, const BatchRow& row, std::size_t number,
                   std::size_t numRows) {
  std::string text;
  std::size_t at = 0;
  for (std::size_t open = 0; (open = pattern.find('{', at)) != std::string::npos;) {
    const std::size_t close = pattern.find('}', open);
    const std::string word = pattern.substr(open, close - open + 1);
    text += pattern.substr(at, open - at);
    if (word == "{row}") {
      text += fileNameOf(row.name);
    } else if (word == "{number}") {
      const std::string digits = std::to_string(number);
      text += std::string(std::to_string(numRows).size() - digits.size(), '0') + digits;
    } else {
      throw CliError("path " + quote(pattern) + ": there are {row} and {number}, no " + word,
                     kWrongUsage);
    }
    at = close + 1;
  }
  return text + pattern.substr(at);
}

void addFiles(const BatchOptions& options, BatchPlan& plan) {
  std::map<std::string, std::string> writers;
  const auto claim = [&](const std::string& path, const std::string& row) {
    const auto [writer, isNew] = writers.emplace(path, row);
    if (isNew || path.empty()) return;
    throw CliError("rows " + quote(writer->second) + " and " + quote(row) + " would both write " +
                       quote(path) + ", write {row} or {number} in it",
                   kWrongUsage);
  };
  for (std::size_t i = 0; i < plan.rows.size(); ++i) {
    BatchRow& row = plan.rows[i];
    row.exportTo = filled(options.exportTo, row, i + 1, plan.rows.size());
    row.renderTo = filled(options.renderTo, row, i + 1, plan.rows.size());
    if (!options.sheet.path.empty()) row.tile = plan.folder + "/" + fileNameOf(row.name) + ".png";
    for (const std::string& path : {row.exportTo, row.renderTo, row.tile}) claim(path, row.name);
  }
}

/// The density by its parameter or as a value, checked for what it measures.
std::string densityOf(const OdDbObjectId& block, const BatchOptions& options) {
  const bool isAsked = !options.density.empty();
  const std::string text = isAsked ? options.density : "density";
  const OdDbObjectId parameter = vdm_host::findParameter(block, OdString(text));
  OdExpression::Dimension dimension;
  OdString unit;  // of a value without an expression
  OdString error;
  double value = 0.0;
  if (!parameter.isNull()) {
    const auto info = vdm_host::describeParameter(parameter, vdm_host::ParameterDetail::kValue);
    dimension = info.dimension;
    unit = info.shown.unit;
  } else if (!isAsked) {
    return {};
  } else if (!vdm_host::readConstant(OdString(text), vdm_host::unitsOfBlock(block), value,
                                     dimension, error)) {
    throw CliError("density " + quote(text) + " is no parameter and no value: " + str(error),
                   kWrongUsage);
  }
  using Dimension = OdExpression::Dimension;
  constexpr double kPerVolume = -3.0;
  const bool isPlain = dimension == Dimension::plain() && unit.isEmpty();
  const bool isDensity =
      dimension.power(Dimension::kMass) == 1.0 && dimension.power(Dimension::kLength) == kPerVolume;
  if (isPlain || isDensity) return text;
  if (!isAsked) return {};
  throw CliError("density " + quote(text) + " is in " +
                     str(unit.isEmpty() ? dimension.text() : unit) +
                     ", a mass per volume is needed",
                 kWrongUsage);
}

void addInputs(const BatchOptions& options, BatchPlan& plan) {
  const std::string tile = std::to_string(plan.tile.width) + "x" + std::to_string(plan.tile.height);
  for (BatchRow& row : plan.rows) {
    Json values = Json::object();
    for (const ParameterAssignment& value : row.values) {
      values[str(value.name)] = str(value.expression);
    }
    row.inputs = {{"version", kRecordVersion},
                  {"drawing", plan.drawing.content},
                  {"block", options.block},
                  {"table", row.configuration.empty() ? "" : plan.table},
                  {"configuration", row.configuration},
                  {"values", std::move(values)},
                  {"density", plan.density},
                  {"export", row.exportTo},
                  {"render", row.renderTo},
                  {"size", row.renderTo.empty() ? "" : options.size},
                  {"view", row.renderTo.empty() && row.tile.empty() ? "" : options.view},
                  {"tile", row.tile.empty() ? "" : tile},
                  {"fresh", options.fresh}};
  }
}

// ---- The order

/// Number of component features that follow a parameter: what a change of it costs.
double weightOf(const OdDbObjectId& block, const OdString& parameter) {
  const OdDbObjectId variable = vdm_host::findParameter(block, parameter);
  if (variable.isNull()) return 0.0;
  std::set<OdDbObjectId> features;
  for (const vdm_host::ParameterLink& link : vdm_host::dependentsOf(variable)) {
    const VdmFeaturePtr feature = VdmFeature::open(link.object);
    if (feature.isNull()) continue;
    const auto sizes = VdmComponentSizeFeature::cast(feature.get());
    if (sizes.isNull()) {
      features.insert(link.object);
      continue;
    }
    for (const OdDbObjectId& id : vdm_host::componentsOfBlock(sizes->blockId())) {
      features.insert(id);
    }
  }
  constexpr double kEvaluation = 0.01;  // of a feature: the variable itself
  return static_cast<double>(features.size()) + kEvaluation;
}

std::vector<std::size_t> orderOf(const OdDbObjectId& block, const Table& table,
                                 const Choice& choice, const std::vector<BatchRow>& rows) {
  std::vector<batch::RowColumn> columns;
  const std::size_t numPoints = choice.points.size();
  for (std::size_t column = 0; column < table.cells.size() && !choice.rows.empty(); ++column) {
    batch::RowColumn& added = columns.emplace_back();
    added.weight = weightOf(block, table.parameters[column]);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      added.values.push_back(table.cells[column][choice.rows[i / numPoints]]);
    }
  }
  for (std::size_t k = 0; k < choice.points.front().size(); ++k) {
    batch::RowColumn& added = columns.emplace_back();
    added.weight = weightOf(block, rows.front().values[k].name);
    for (const BatchRow& row : rows) added.values.push_back(str(row.values[k].expression));
  }
  return batch::orderRows(columns, rows.size());
}

std::string resultsFolder(const BatchOptions& options) {
  if (!options.results.empty()) return options.results;
  const std::string suffix = ".vdm";
  const bool hasSuffix = options.input.ends_with(suffix) && options.input.size() > suffix.size();
  return options.input.substr(0, options.input.size() - (hasSuffix ? suffix.size() : 0)) + ".batch";
}

}  // namespace

std::string fileNameOf(const std::string& name) {
  constexpr std::string_view kHexadecimal = "0123456789ABCDEF";
  std::string text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const auto byte = static_cast<unsigned char>(name[i]);
    const bool isKept =
        byte > ' ' - 1 && byte != '/' && byte != '%' && byte != 0x7F && !(i == 0 && byte == '.');
    if (isKept) {
      text += name[i];
    } else {
      text += {'%', kHexadecimal[byte >> 4U], kHexadecimal[byte & 0xFU]};
    }
  }
  return text;
}

BatchPlan planBatch(const SessionSettings& settings, const BatchOptions& options) {
  BatchPlan plan;
  plan.folder = resultsFolder(options);
  plan.look = lookOf(options.size, options.view);
  const std::vector<ParameterAssignment> sets = readSets(options);
  if (const OdStatus status = batch::stampFile(options.input, plan.drawing); !status.ok()) {
    throw CliError(str(status.text));
  }
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead,
                              Modules::kRequired);
  if (!plan.drawing.isUnchanged(options.input)) {
    throw CliError("file " + quote(options.input) + " is being written");
  }
  const OdDbObjectId block = findBlock(*drawing, options.block);
  const Table table = findTable(block, options);
  if (!table.feature.isNull()) plan.table = str(VdmFeature::open(table.feature)->name());
  const Choice choice = choose(table, options);
  plan.rows = makeRows(table, choice, sets);
  requireParameters(block, plan.rows);
  plan.density = densityOf(block, options);
  plan.tile = rendering::tileSizeFor(plan.rows.size());
  addFiles(options, plan);
  addInputs(options, plan);
  plan.order = orderOf(block, table, choice, plan.rows);
  return plan;
}

}  // namespace cli
