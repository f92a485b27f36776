// Operations on configurations: load, select, save, remove, link, unlink.
#include <fstream>
#include <sstream>

#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/operation.h"
#include "host/cli/parameter_changes.h"
#include "host/cli/paths.h"
#include "host/cli/text_output.h"
#include "host/parameters/configurations.h"

namespace cli {

namespace {

using Kind = ParameterKind;

constexpr Parameter kTableParameter = {"table", Kind::kText, false, false,
                                       "name of the table where a block has several"};
constexpr Parameter kRowParameter = {"row", Kind::kText, true, true, "the configuration"};

/// What an operation on an existing table works on.
struct Target {
  OdDbObjectId block;
  OdDbObjectId feature;
};

Target targetOf(Editing& editing, const Arguments& arguments) {
  Target target;
  target.block = findBlock(editing.drawing, arguments.text("block"));
  target.feature = findConfigurationTable(target.block, arguments.text("table"));
  return target;
}

std::string readFile(const std::string& path) {
  checkInput(path);
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  if (!file) throw CliError("file " + quote(path) + " cannot be read");
  return std::move(bytes).str();
}

/// "selected 'Large'", as a line below the headline.
void noteSelected(const OdDbObjectId& feature, StepResult& step) {
  const vdm_host::ConfigurationState state = vdm_host::configurationState(feature);
  const std::string selected = str(state.selected);
  step.values.emplace_back("selected", selected);
  step.notes.push_back(state.isCustom ? "no configuration applies: " + quote(selected)
                                      : "selected " + quote(selected));
}

StepResult changeTable(Editing& editing, const Target& target, const char* what,
                       std::string headline, const std::function<OdStatus()>& change) {
  StepResult step = changeParameters(editing, target.block, what, std::move(headline), change);
  noteSelected(target.feature, step);
  return step;
}

[[noreturn]] void refuseTable(const std::string& path, const std::string& why,
                              const std::vector<OdString>& problems) {
  std::string text = "file " + quote(path) + ": " + why;
  for (const OdString& problem : problems) text += "; " + oneLine(problem.utf8());
  throw CliError(text);
}

StepResult loadTable(Editing& editing, const Arguments& arguments) {
  Target target;
  target.block = findBlock(editing.drawing, arguments.text("block"));
  if (!arguments.has("new") && !vdm_host::configurationsOf(target.block).empty()) {
    target.feature = findConfigurationTable(target.block, arguments.text("table"));
  }
  const std::string path = arguments.text("file");
  vdm_host::TableSheet sheet;
  std::vector<OdString> problems;
  if (const OdStatus status = vdm_host::readTable(readFile(path), sheet); !status.ok()) {
    refuseTable(path, str(status.text), problems);
  }
  vdm_host::LoadOptions options;
  options.createsParameters = !arguments.has("no-create");
  const unsigned rows = sheet.rows == 0 ? 0 : sheet.rows - 1;
  StepResult step;
  try {
    step = changeParameters(editing, target.block, "config load",
                            "loaded " + counted(rows, "configuration") + " from " + path, [&] {
                              return vdm_host::loadConfigurations(target.block, sheet, options,
                                                                  target.feature, problems);
                            });
  } catch (const CliError& error) {
    refuseTable(path, error.what(), problems);
  }
  for (const OdString& problem : problems) step.notes.push_back(str(problem));
  step.values.emplace_back("table", handleOf(target.feature));
  noteSelected(target.feature, step);
  return step;
}

StepResult selectRow(Editing& editing, const Arguments& arguments) {
  const Target target = targetOf(editing, arguments);
  const OdString row(arguments.text("row"));
  return changeTable(editing, target, "config select", "selected " + quote(row.utf8()),
                     [&] { return vdm_host::selectConfiguration(target.feature, row); });
}

StepResult saveRow(Editing& editing, const Arguments& arguments) {
  const Target target = targetOf(editing, arguments);
  const OdString row(arguments.text("row"));
  return changeTable(editing, target, "config save",
                     "saved the present values as " + quote(row.utf8()),
                     [&] { return vdm_host::saveConfiguration(target.feature, row); });
}

StepResult removeRow(Editing& editing, const Arguments& arguments) {
  const Target target = targetOf(editing, arguments);
  const OdString row(arguments.text("row"));
  return changeTable(editing, target, "config remove", "removed " + quote(row.utf8()),
                     [&] { return vdm_host::removeConfiguration(target.feature, row); });
}

StepResult linkColumn(Editing& editing, const Arguments& arguments) {
  const Target target = targetOf(editing, arguments);
  const OdString column(arguments.text("column"));
  const OdString parameter(arguments.text("parameter"));
  return changeTable(editing, target, "config link",
                     "linked column " + quote(column.utf8()) + " to " + quote(parameter.utf8()),
                     [&] { return vdm_host::linkColumn(target.feature, column, parameter); });
}

StepResult unlinkColumn(Editing& editing, const Arguments& arguments) {
  const Target target = targetOf(editing, arguments);
  const OdString column(arguments.text("column"));
  return changeTable(editing, target, "config unlink", "unlinked column " + quote(column.utf8()),
                     [&] { return vdm_host::unlinkColumn(target.feature, column); });
}

constexpr Parameter kLoadParameters[] = {
    {"file", Kind::kFile, true, true, "table of comma-separated values"},
    {"new", Kind::kFlag, false, false, "a table more, beside those that the block has"},
    {"no-create", Kind::kFlag, false, false, "make no parameters for columns that have none"},
    kTableParameter,
    kBlockParameter,
};
constexpr Parameter kRowParameters[] = {kRowParameter, kTableParameter, kBlockParameter};
constexpr Parameter kLinkParameters[] = {
    {"column", Kind::kText, true, true, "column of the table"},
    {"parameter", Kind::kText, true, true, "the parameter that it is to set"},
    kTableParameter,
    kBlockParameter,
};
constexpr Parameter kUnlinkParameters[] = {
    {"column", Kind::kText, true, true, "column of the table"},
    kTableParameter,
    kBlockParameter,
};

constexpr Operation kOperations[] = {
    {"config load", "Load a table of configurations and link its columns to parameters",
     "vdm config load plate.vdm variants.csv", kLoadParameters, loadTable},
    {"config select", "Give the parameters the values of a configuration",
     "vdm config select plate.vdm M10", kRowParameters, selectRow},
    {"config save", "Save the present values as a configuration",
     "vdm config save plate.vdm 'as built'", kRowParameters, saveRow},
    {"config remove", "Remove a configuration", "vdm config remove plate.vdm 'as built'",
     kRowParameters, removeRow},
    {"config link", "Let a column of the table set a parameter",
     "vdm config link plate.vdm Depth d", kLinkParameters, linkColumn},
    {"config unlink", "Let a column of the table set nothing", "vdm config unlink plate.vdm Depth",
     kUnlinkParameters, unlinkColumn},
};

}  // namespace

std::span<const Operation> configOperations() { return kOperations; }

}  // namespace cli
