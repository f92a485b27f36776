// Scripts of edits.
#include "host/cli/edit_script.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "host/cli/checked_json.h"
#include "host/cli/cli_error.h"
#include "host/cli/new_name.h"
#include "host/cli/paths.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kOpKey = "op";
constexpr const char* kAsKey = "as";
/// Steps in a list, with lists of numbers or texts in them.
constexpr std::size_t kMaxDepth = 8;

[[noreturn]] void refuse(const std::string& line) { throw CliError(line, kWrongUsage); }

std::string readAll(const std::string& path) {
  if (path == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
  checkInput(path);
  std::ifstream in(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(in), {}};
  if (!in) throw CliError("file " + quote(path) + " cannot be read");
  return text;
}

std::string shown(const Json& value) {
  constexpr std::size_t kShown = 40;
  return shortened(value.dump(-1, ' ', false, Json::error_handler_t::replace), kShown);
}

const char* wantedText(ParameterKind kind) {
  static constexpr const char* kTexts[] = {
      "a text",                     // kText
      "a text",                     // kFile
      "a number",                   // kNumber
      "an array of three numbers",  // kPoint
      "true or false",              // kFlag
      "an array of texts",          // kTexts
  };
  return kTexts[static_cast<std::size_t>(kind)];
}

bool isPoint(const Json& value) {
  const auto isNumber = [](const Json& part) { return part.is_number(); };
  return value.is_array() && value.size() == 3 && std::ranges::all_of(value, isNumber);
}

/// The value as the command line would have it; false when it is of another kind.
bool addValue(const Parameter& parameter, const Json& value, Arguments& arguments) {
  switch (parameter.kind) {
    case ParameterKind::kFlag:
      if (!value.is_boolean()) return false;
      if (value.get<bool>()) arguments.add(parameter.name, "");
      return true;
    case ParameterKind::kNumber:
      if (!value.is_number()) return false;
      arguments.add(parameter.name, exactNumber(value.get<double>()));
      return true;
    case ParameterKind::kPoint:
      if (value.is_string()) break;
      if (!isPoint(value)) return false;
      arguments.add(parameter.name, exactNumber(value[0].get<double>()) + "," +
                                        exactNumber(value[1].get<double>()) + "," +
                                        exactNumber(value[2].get<double>()));
      return true;
    case ParameterKind::kTexts:
      if (value.is_string()) break;
      if (!value.is_array()) return false;
      for (const Json& one : value) {
        if (!one.is_string()) return false;
        arguments.add(parameter.name, one.get<std::string>());
      }
      return true;
    case ParameterKind::kText:
    case ParameterKind::kFile:
      break;
  }
  if (!value.is_string()) return false;
  arguments.add(parameter.name, value.get<std::string>());
  return true;
}

std::string keysOf(const Operation& operation) {
  std::string keys;
  for (const Parameter& parameter : operation.parameters) {
    keys += (keys.empty() ? "" : ", ") + std::string(parameter.name);
  }
  return keys.empty() ? "none" : keys;
}

std::string namesOfOperations() {
  std::string names;
  for (const Operation& operation : operations()) {
    names += (names.empty() ? "" : ", ") + std::string(operation.name);
  }
  return names;
}

const Operation& operationOf(const Json& json, std::size_t number) {
  const std::string where = "step " + std::to_string(number);
  if (!json.is_object()) refuse(where + ": " + shown(json) + " is not an object");
  if (!json.contains(kOpKey)) refuse(where + ": key 'op' is missing");
  const Json& op = json[kOpKey];
  const Operation* operation = op.is_string() ? findOperation(op.get<std::string>()) : nullptr;
  if (operation == nullptr) {
    refuse(where + ": op " + shown(op) + " is none of " + namesOfOperations());
  }
  return *operation;
}

void readKey(const std::string& key, const Json& value, ScriptStep& step) {
  const std::string where = stepName(step) + ": ";
  if (key == kOpKey) return;
  if (key == kAsKey) {
    const bool isName = value.is_string() && !value.get<std::string>().empty() &&
                        value.get<std::string>().find('.') == std::string::npos;
    if (!isName) refuse(where + "key 'as' is " + shown(value) + ", it must be a name without dots");
    step.as = value.get<std::string>();
    return;
  }
  const auto& parameters = step.operation->parameters;
  const auto found =
      std::ranges::find_if(parameters, [&key](const Parameter& p) { return key == p.name; });
  if (found == parameters.end()) {
    refuse(where + "key " + quote(key) + " is not known, " + step.operation->name +
           " has the keys " + keysOf(*step.operation));
  }
  if (!addValue(*found, value, step.arguments)) {
    refuse(where + "key " + quote(key) + " is " + shown(value) + ", it must be " +
           wantedText(found->kind));
  }
}

ScriptStep readStep(const Json& json, std::size_t number, std::set<std::string>& names) {
  ScriptStep step;
  step.number = number;
  step.operation = &operationOf(json, number);
  for (const auto& [key, value] : json.items()) readKey(key, value, step);
  try {
    requireArguments(*step.operation, step.arguments);
  } catch (const CliError& error) {
    refuse(stepName(step) + ": " + error.what());
  }
  if (!step.as.empty() && !names.insert(step.as).second) {
    refuse(stepName(step) + ": key 'as' is " + quote(step.as) + ", which an earlier step has");
  }
  return step;
}

}  // namespace

std::string stepName(const ScriptStep& step) {
  return "step " + std::to_string(step.number) + " (" + step.operation->name + ")";
}

void requireArguments(const Operation& operation, const Arguments& arguments) {
  for (const Parameter& parameter : operation.parameters) {
    if (parameter.required && !arguments.has(parameter.name)) {
      throw CliError(quote(parameter.name) + " is missing: " + parameter.help, kWrongUsage);
    }
    if (parameter.kind == ParameterKind::kFile) continue;
    for (const std::string& text : arguments.texts(parameter.name)) {
      requireUtf8(parameter.name, text);
    }
  }
}

std::vector<ScriptStep> parseScript(const std::string& text, const std::string& source) {
  const std::string script = "script " + quote(source);
  const Json json = parseJson(
      text, kMaxDepth,
      [&script](const JsonFault& fault) -> std::string {
        switch (fault.kind) {
          case JsonFault::Kind::kTwin:
            return "key " + quote(fault.key) + " comes twice in a step";
          case JsonFault::Kind::kDepth:
            return script + " is nested deeper than " + std::to_string(kMaxDepth) + " levels";
          case JsonFault::Kind::kSyntax:
            break;
        }
        return script + " is not JSON: error at byte " + std::to_string(fault.position);
      },
      kWrongUsage);
  if (!json.is_array()) refuse("script " + quote(source) + " is not an array of steps");
  if (json.empty()) refuse("script " + quote(source) + " has no steps");
  std::vector<ScriptStep> steps;
  std::set<std::string> names;
  for (const Json& one : json) steps.push_back(readStep(one, steps.size() + 1, names));
  return steps;
}

std::vector<ScriptStep> readScript(const std::string& path) {
  return parseScript(readAll(path), path);
}

Arguments withValues(const ScriptStep& step, const StepValues& values) {
  Arguments arguments;
  for (const Parameter& parameter : step.operation->parameters) {
    for (const std::string& text : step.arguments.texts(parameter.name)) {
      if (!text.starts_with('$')) {
        arguments.add(parameter.name, text);
        continue;
      }
      const auto value = values.find(text.substr(1));
      if (value == values.end()) {
        throw CliError(
            "key " + quote(parameter.name) + " is " + quote(text) + ", which no earlier step gave",
            kWrongUsage);
      }
      arguments.add(parameter.name, value->second);
    }
  }
  return arguments;
}

void noteValues(const ScriptStep& step, const StepResult& result, StepValues& values) {
  if (step.as.empty() || result.values.empty()) return;
  values[step.as] = result.values.front().second;
  for (const auto& [name, value] : result.values) values[step.as + "." + name] = value;
}

}  // namespace cli
