// Edits of a drawing: one operation, or a script of many.
#include "host/cli/edit_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/edit_script.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/step_output.h"
#include "platform/base/error.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

void save(OdDbDatabase& drawing, const EditOptions& options) {
  if (options.dryRun || !drawing.isModified()) return;
  withProgress("writing " + options.input, [&] { saveDrawing(drawing); });
}

StepResult runStep(Editing& editing, const ScriptStep& step, const StepValues& values) {
  try {
    return step.operation->run(editing, withValues(step, values));
  } catch (const CliError& error) {
    throw CliError(stepName(step) + ": " + error.what(), error.code());
  } catch (const OdError& error) {
    throw CliError(stepName(step) + ": " + str(error.description()));
  }
}

std::vector<StepResult> runSteps(OdDbDatabase& drawing, const std::vector<ScriptStep>& steps) {
  Editing editing(drawing);
  vdm_host::EditGroup group(editing.editor);
  std::vector<StepResult> results;
  StepValues values;
  for (const ScriptStep& step : steps) {
    results.push_back(runStep(editing, step, values));
    noteValues(step, results.back(), values);
  }
  group.commit();
  return results;
}

Json operationJson(const EditOptions& options, const Operation& operation, const StepResult& step) {
  Json json{{"file", options.input}, {"op", operation.name}, {"saved", !options.dryRun}};
  json.update(stepJson(step));
  return json;
}

Json scriptJson(const EditOptions& options, const std::vector<ScriptStep>& steps,
                const std::vector<StepResult>& results, bool sound) {
  Json list = Json::array();
  for (std::size_t i = 0; i < steps.size(); ++i) {
    Json one{{"step", steps[i].number}, {"op", steps[i].operation->name}};
    if (!steps[i].as.empty()) one["as"] = steps[i].as;
    one.update(stepJson(results[i]));
    list.push_back(std::move(one));
  }
  return {{"file", options.input},
          {"saved", !options.dryRun},
          {"sound", sound},
          {"steps", std::move(list)}};
}

constexpr const char* kDryRunLine = "nothing was saved, this was a dry run\n";

std::string scriptText(const EditOptions& options, const std::vector<ScriptStep>& steps,
                       const std::vector<StepResult>& results) {
  std::string text;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    text += std::to_string(steps[i].number) + ". " + stepText(results[i], options.explain);
  }
  return text + (options.dryRun ? kDryRunLine : "");
}

}  // namespace

int runOperation(const SessionSettings& settings, const EditOptions& options,
                 const Operation& operation, const Arguments& arguments) {
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kWrite,
                              Modules::kRequired);
  const StepResult step = withProgress(std::string(operation.name) + " in " + options.input, [&] {
    Editing editing(*drawing);
    return operation.run(editing, arguments);
  });
  save(*drawing, options);
  printResult(
      settings, [&] { return operationJson(options, operation, step); },
      [&] { return stepText(step, options.explain) + (options.dryRun ? kDryRunLine : ""); });
  return exitCodeFor(isSound(step));
}

int runScript(const SessionSettings& settings, const EditOptions& options,
              const std::string& script) {
  requireModules(settings);
  checkInput(options.input);
  const std::vector<ScriptStep> steps = readScript(script);
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kWrite);
  const std::vector<StepResult> results =
      withProgress(counted(steps.size(), "step") + " in " + options.input,
                   [&] { return runSteps(*drawing, steps); });
  save(*drawing, options);
  const bool sound =
      std::ranges::all_of(results, [](const StepResult& step) { return isSound(step); });
  printResult(
      settings, [&] { return scriptJson(options, steps, results, sound); },
      [&] { return scriptText(options, steps, results); });
  return exitCodeFor(sound);
}

}  // namespace cli
