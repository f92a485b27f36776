// The commands of models: references, components, features, edits, pictures.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "host/cli/binding_command.h"
#include "host/cli/command_parts.h"
#include "host/cli/config_command.h"
#include "host/cli/edit_command.h"
#include "host/cli/param_command.h"
#include "host/cli/refs_command.h"
#include "host/cli/render_command.h"

namespace cli {

/// What the command line gave for one operation.
struct OperationLine {
  const Operation* operation = nullptr;
  std::map<std::string, std::string> texts;
  std::map<std::string, std::vector<std::string>> lists;
  std::map<std::string, const CLI::Option*> options;  ///< as parsed
};

/// All options of these commands.
struct ModelCommandLine {
  EditOptions edit;
  std::string script;
  std::string listInput;
  bool listGroups = false;
  RefsOptions refs;
  ParamOptions param;
  ConfigOptions config;
  BindingOptions binding;
  RenderCommandOptions render;
  std::deque<OperationLine> operations;
};

void addModelCommands(CLI::App& app, CommandRun& line, ModelCommandLine& model);

}  // namespace cli
