// Edits of a drawing: one operation, or a script of many.
#include "host/cli/edit_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/cli_error.h"
#include "host/cli/edit_script.h"
#include "host/cli/json_text.h"
#include "host/cli/paths.h"
#include "host/cli/progress.h"
#include "host/cli/step_output.h"
#include "host/cli/text_output.h"
#include "platform/base/error.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

void save(OdDbDatabase& drawing, const EditOptions& options) {
  if (options.dryRun || !drawing.isModified()) return;
  const Progress progress("writing " + options.input);
  saveDrawing(drawing);
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

}  // namespace

int runOperation(const SessionOptions& session, const EditOptions& options,
                 const Operation& operation, const Arguments& arguments) {
  requireModules(session);
  checkInput(options.input);
  DrawingSession runtime(session);
  const OdDbDatabasePtr drawing = runtime.open(options.input, DrawingSession::Access::kWrite);
  StepResult step;
  {
    const Progress progress(std::string(operation.name) + " in " + options.input);
    Editing editing(*drawing);
    step = operation.run(editing, arguments);
  }
  save(*drawing, options);
  if (session.json) {
    Json json{{"file", options.input}, {"op", operation.name}, {"saved", !options.dryRun}};
    json.update(stepJson(step));
    printOut(jsonText(json));
  } else {
    printOut(stepText(step, options.explain) + (options.dryRun ? kDryRunLine : ""));
  }
  return isSound(step) ? kDone : kNotSound;
}

int runScript(const SessionOptions& session, const EditOptions& options,
              const std::string& script) {
  requireModules(session);
  checkInput(options.input);
  const std::vector<ScriptStep> steps = readScript(script);
  DrawingSession runtime(session);
  const OdDbDatabasePtr drawing = runtime.open(options.input, DrawingSession::Access::kWrite);
  std::vector<StepResult> results;
  {
    const Progress progress(counted(steps.size(), "step") + " in " + options.input);
    results = runSteps(*drawing, steps);
  }
  save(*drawing, options);
  bool sound = true;
  std::string text;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    sound = sound && isSound(results[i]);
    text += std::to_string(steps[i].number) + ". " + stepText(results[i], options.explain);
  }
  if (session.json) {
    printOut(jsonText(scriptJson(options, steps, results, sound)));
  } else {
    printOut(text + (options.dryRun ? kDryRunLine : ""));
  }
  return sound ? kDone : kNotSound;
}

}  // namespace cli
