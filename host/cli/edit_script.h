// Scripts of edits: a JSON array of steps, checked as a whole before any of them runs.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/cli/operation.h"

namespace cli {

/// One step: {"op": "insert", "component": "m8", "on": "21", "at": [30, 20, 10], "as": "first"}.
/// Keys are the parameters of the operation. The text "$first" means the first value of the step
/// of that name, "$first.feature" another one of its values.
struct ScriptStep {
  std::size_t number = 0;  ///< from 1
  const Operation* operation = nullptr;
  std::string as;
  Arguments arguments;
};

/// Raises CliError naming the step, its operation and the key that is wrong: kCouldNot for a file
/// that cannot be read, otherwise kWrongUsage. "-" reads standard input.
std::vector<ScriptStep> readScript(const std::string& path);
std::vector<ScriptStep> parseScript(const std::string& text, const std::string& source);

/// Values of earlier steps: "first", "first.insert", ...
using StepValues = std::map<std::string, std::string>;
/// The arguments with values in place of their names. CliError for a name that no step has.
[[nodiscard]] Arguments withValues(const ScriptStep& step, const StepValues& values);
void noteValues(const ScriptStep& step, const StepResult& result, StepValues& values);

/// "step 3 (insert)".
[[nodiscard]] std::string stepName(const ScriptStep& step);

/// Raises CliError for a required parameter that has no value, and for a text that is not UTF-8.
void requireArguments(const Operation& operation, const Arguments& arguments);

}  // namespace cli
