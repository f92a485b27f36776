// The commands of models.
#include "host/cli/command_line_model.h"

#include <algorithm>
#include <cctype>

#include "host/cli/cli_error.h"
#include "host/cli/edit_script.h"
#include "host/cli/feature_command.h"

namespace cli {

namespace {

/// Commands that only hold others.
struct FamilyRow {
  const char* name;
  const char* purpose;
  const char* example;
};
constexpr FamilyRow kFamilies[] = {
    {"refs", "Name faces, edges and vertices, list and explain references",
     "vdm refs list plate.vdm"},
    {"component", "Make and list components, which cut or fill solids",
     "vdm component add plate.vdm hole9 hole --diameter 9"},
    {"feature", "List, rename, erase and check features", "vdm feature list plate.vdm"},
    {"param", "Parameters: named values and expressions that a model follows",
     "vdm param add plate.vdm 'width=120 mm' 'height=width / 2'"},
    {"config", "Tables of configurations: rows of values for parameters",
     "vdm config load plate.vdm variants.csv"},
};

std::string upperCase(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

/// The command that holds an operation of two words; the program itself for one word.
CLI::App& parentOf(CLI::App& app, const std::string& name) {
  const std::size_t blank = name.find(' ');
  return blank == std::string::npos ? app : *app.get_subcommand(name.substr(0, blank));
}

std::string lastWord(const std::string& name) {
  const std::size_t blank = name.find(' ');
  return blank == std::string::npos ? name : name.substr(blank + 1);
}

const char* valueName(ParameterKind kind) {
  return kind == ParameterKind::kPoint    ? "X,Y,Z"
         : kind == ParameterKind::kNumber ? "NUMBER"
                                          : "TEXT";
}

CLI::Option* addValue(CLI::App* command, const std::string& name, const Parameter& parameter,
                      OperationLine& line) {
  if (parameter.kind == ParameterKind::kFlag) return command->add_flag(name, parameter.help);
  CLI::Option* option = parameter.kind == ParameterKind::kTexts
                            ? command->add_option(name, line.lists[parameter.name], parameter.help)
                            : command->add_option(name, line.texts[parameter.name], parameter.help);
  return option->type_name(parameter.positional ? "" : valueName(parameter.kind));
}

/// `mayList`: the command can do with nothing but the drawing.
void addParameter(CLI::App* command, const Parameter& parameter, OperationLine& line,
                  bool mayList) {
  const std::string name =
      parameter.positional ? upperCase(parameter.name) : std::string("--") + parameter.name;
  CLI::Option* option = addValue(command, name, parameter, line);
  option->required(parameter.required && !mayList);
  line.options[parameter.name] = option;
}

Arguments argumentsOf(const OperationLine& line) {
  Arguments arguments;
  for (const auto& [name, option] : line.options) {
    if (option->count() == 0) continue;
    const auto list = line.lists.find(name);
    const auto text = line.texts.find(name);
    if (list != line.lists.end()) {
      for (const std::string& value : list->second) arguments.add(name, value);
    } else {
      arguments.add(name, text == line.texts.end() ? std::string() : text->second);
    }
  }
  return arguments;
}

void addEditOptions(CLI::App* command, ModelCommandLine& model, bool updates) {
  command->add_flag("--dry-run", model.edit.dryRun, "show what would happen, save nothing");
  if (updates) {
    command->add_flag("--explain", model.edit.explain,
                      "show all that the update did, with reasons and times");
  }
}

/// Runs an operation with what the command line gave for it.
int runGiven(const CommandRun& line, const ModelCommandLine& model, const OperationLine& values) {
  const Arguments arguments = argumentsOf(values);
  requireArguments(*values.operation, arguments);
  return runOperation(line.settings, model.edit, *values.operation, arguments);
}

CLI::App* addOperation(CLI::App& app, CommandRun& line, ModelCommandLine& model,
                       const Operation& operation, bool mayList) {
  CLI::App* command =
      addCommand(parentOf(app, operation.name), line, lastWord(operation.name).c_str(),
                 operation.purpose, operation.example);
  addInput(command, model.edit.input);
  OperationLine& values = model.operations.emplace_back();
  values.operation = &operation;
  for (const Parameter& parameter : operation.parameters) {
    addParameter(command, parameter, values, mayList);
  }
  addEditOptions(command, model, operation.updates);
  command->callback([&line, &model, &values] {
    line.run = [&line, &model, &values] { return runGiven(line, model, values); };
  });
  return command;
}

/// `vdm group FILE --list` beside the operation.
void addGroupList(CLI::App* command, CommandRun& line, ModelCommandLine& model,
                  OperationLine& values) {
  command->add_flag("--list", model.listGroups, "list the groups of the drawing");
  command->callback([&line, &model, &values] {
    line.run = [&line, &model, &values] {
      return model.listGroups ? runGroupList(line.settings, model.edit.input)
                              : runGiven(line, model, values);
    };
  });
}

using ListAction = int (*)(const SessionSettings&, const std::string&);

void addList(CLI::App& parent, CommandRun& line, ModelCommandLine& model, const char* purpose,
             const std::string& example, ListAction action) {
  CLI::App* command = addCommand(parent, line, "list", purpose, example);
  addInput(command, model.listInput);
  setAction(command, line, action, model.listInput);
}

using RefsAction = int (*)(const SessionSettings&, const RefsOptions&);

CLI::App* addRefsAction(CLI::App& refs, CommandRun& line, ModelCommandLine& model, const char* name,
                        const char* purpose, const char* example, RefsAction action) {
  CLI::App* command = addCommand(refs, line, name, purpose, example);
  addInput(command, model.refs.input);
  setAction(command, line, action, model.refs);
  return command;
}

void addRefsReaders(CLI::App& refs, CommandRun& line, ModelCommandLine& model) {
  addRefsAction(refs, line, model, "list", "List all references with their grades",
                "vdm refs list plate.vdm", runRefsList);
  CLI::App* explain =
      addRefsAction(refs, line, model, "explain",
                    "Show where a reference comes from and how each change was decided",
                    "vdm refs explain plate.vdm top", runRefsExplain);
  addInput(explain, model.refs.reference, "REFERENCE", "reference, a name or handle");
  addRefsAction(refs, line, model, "audit",
                "Count references by grade; exit code 3 when some are lost or ambiguous",
                "vdm refs audit plate.vdm", runRefsAudit);
}

/// A command that reads what a block has.
template <class Options>
CLI::App* addBlockReader(CLI::App& parent, CommandRun& line, Options& options, const char* name,
                         const char* purpose, const char* example,
                         int (*action)(const SessionSettings&, const Options&)) {
  CLI::App* command = addCommand(parent, line, name, purpose, example);
  addInput(command, options.input);
  command->add_option("--block", options.block, "block that is meant; model space by default")
      ->type_name("NAME");
  setAction(command, line, action, options);
  return command;
}

void addParamReaders(CLI::App& param, CommandRun& line, ParamOptions& options) {
  addBlockReader(param, line, options, "list",
                 "List parameters with values, expressions, limits and users",
                 "vdm param list plate.vdm", runParamList);
  CLI::App* get = addBlockReader(param, line, options, "get", "Show values of parameters",
                                 "vdm param get plate.vdm width height", runParamGet);
  get->add_option("NAMES", options.names, "parameters")->required()->type_name("");
  CLI::App* explain =
      addBlockReader(param, line, options, "explain",
                     "Show what defines a parameter, and all that depends on it down to faces",
                     "vdm param explain plate.vdm width", runParamExplain);
  explain->add_option("NAME", options.names, "the parameter")
      ->required()
      ->expected(1)
      ->type_name("");
  addBlockReader(
      param, line, options, "check",
      "Find parameters that are out of range, unresolved, unused, without unit, or twice",
      "vdm param check plate.vdm", runParamCheck);
}

void addConfigReaders(CLI::App& config, CommandRun& line, ConfigOptions& options) {
  CLI::App* readers[] = {
      addBlockReader(config, line, options, "list",
                     "List tables with their rows and linked columns", "vdm config list plate.vdm",
                     runConfigList),
      addBlockReader(config, line, options, "find",
                     "Say which configuration the model is in, or the nearest and what differs",
                     "vdm config find plate.vdm", runConfigFind),
      addBlockReader(config, line, options, "export",
                     "Write a table, with the headers that it was loaded with",
                     "vdm config export plate.vdm -o variants.csv", runConfigExport)};
  for (CLI::App* reader : readers) {
    reader->add_option("--table", options.table, "name of the table where there are several")
        ->type_name("NAME");
  }
  addOutput(readers[2], options.output, "file of comma-separated values to write")->required();
}

using BindingAction = int (*)(const SessionSettings&, const BindingOptions&);

void addShow(CLI::App& parent, CommandRun& line, ModelCommandLine& model, const char* purpose,
             const char* example, const char* what, BindingAction action) {
  CLI::App* command = addCommand(parent, line, "show", purpose, example);
  addInput(command, model.binding.input);
  addInput(command, model.binding.name, "NAME", what);
  setAction(command, line, action, model.binding);
}

void addEdit(CLI::App& app, CommandRun& line, ModelCommandLine& model) {
  CLI::App* command =
      addCommand(app, line, "edit", "Run many operations from a JSON script as one: all or nothing",
                 "vdm edit plate.vdm --script holes.json --dry-run\n"
                 "  echo '[{\"op\": \"move\", \"entity\": \"4F\", \"by\": [10, 0, 0]}]' | "
                 "vdm edit plate.vdm --script -");
  addInput(command, model.edit.input);
  command->add_option("--script", model.script, "JSON file, or - for standard input")
      ->required()
      ->type_name("SCRIPT");
  addEditOptions(command, model, /*updates=*/true);
  command->callback([&line, &model] {
    line.run = [&] { return runScript(line.settings, model.edit, model.script); };
  });
}

void addRender(CLI::App& app, CommandRun& line, ModelCommandLine& model) {
  RenderCommandOptions& render = model.render;
  CLI::App* command =
      addCommand(app, line, "render", "Draw a picture, or write a model for viewers",
                 "vdm render plate.vdm -o plate.png --view 2,-3,2 --labels");
  addInput(command, render.input);
  addOutput(command, render.output, "file to write: .png, .svg or .glb")->required();
  command->add_option("--size", render.size, "of the picture in pixels")
      ->capture_default_str()
      ->type_name("WxH");
  command
      ->add_option("--view", render.view,
                   "where the eye is: iso, top, bottom, front, back, right, left or x,y,z")
      ->capture_default_str()
      ->type_name("VIEW");
  command->add_flag("--labels", render.labels, "show the names of references");
  command->add_flag("--no-feature-colors", render.noFeatureColors,
                    "faces in the colours of their solids");
  command->add_option("--block", render.block, "block to draw instead of model space")
      ->type_name("NAME");
  setAction(command, line, runRender, model.render);
}

}  // namespace

void addModelCommands(CLI::App& app, CommandRun& line, ModelCommandLine& model) {
  for (const FamilyRow& family : kFamilies) {
    CLI::App* command = app.add_subcommand(family.name, family.purpose);
    command->require_subcommand(1);
    command->footer(std::string("Example:\n  ") + family.example);
  }
  for (const Operation& operation : operations()) {
    const bool isGroup = operation.name == std::string_view("group");
    CLI::App* command = addOperation(app, line, model, operation, /*mayList=*/isGroup);
    if (isGroup) addGroupList(command, line, model, model.operations.back());
  }
  addRefsReaders(*app.get_subcommand("refs"), line, model);
  addParamReaders(*app.get_subcommand("param"), line, model.param);
  addConfigReaders(*app.get_subcommand("config"), line, model.config);
  addList(*app.get_subcommand("component"), line, model, "List the components of a drawing",
          "vdm component list plate.vdm", runComponentList);
  addList(*app.get_subcommand("feature"), line, model, "List the features of a drawing",
          "vdm feature list plate.vdm", runFeatureList);
  addShow(*app.get_subcommand("component"), line, model,
          "Show the sizes of a component and the expressions that give them",
          "vdm component show plate.vdm m8", "component", runComponentShow);
  addShow(*app.get_subcommand("feature"), line, model,
          "Show sizes, place, angle and suppression of an insert",
          "vdm feature show plate.vdm left", "component feature, a name or handle", runFeatureShow);
  addEdit(app, line, model);
  addRender(app, line, model);
}

}  // namespace cli
