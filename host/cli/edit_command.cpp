// Edits of a drawing: one operation, or a script of many.
#include "host/cli/edit_command.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>

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

/// Runs the steps of a script. Steps of one operation in a row that can share an update pass do. A
/// row that cannot be done at once is halved, down to a single step, which runs by itself and has
/// the errors; rows grow again from there. So equal steps that concern nothing but their own place
/// take one pass, and a step that does more costs a few passes of the steps around it.
class ScriptRun {
 public:
  ScriptRun(Editing& editing, std::span<const ScriptStep> steps)
      : m_editing(editing), m_steps(steps) {}

  std::vector<StepResult> run() {
    while (!rest().empty()) {
      const std::span<const Arguments> row = nextRow();
      if (row.size() < 2 || !runRow(row)) runOne();
    }
    return std::move(m_results);
  }

 private:
  [[nodiscard]] std::span<const ScriptStep> rest() const {
    return m_steps.subspan(m_results.size());
  }

  void note(StepResult result) {
    noteValues(rest().front(), result, m_values);
    m_results.push_back(std::move(result));
  }

  /// The arguments of the next steps that may be done at once.
  std::span<const Arguments> nextRow() {
    if (m_results.size() >= m_rowBegin + m_row.size()) readRow();
    const auto row = std::span<const Arguments>(m_row).subspan(m_results.size() - m_rowBegin);
    return row.first(std::min(row.size(), m_longest));
  }

  /// The steps of one operation that does rows, up to the first one that needs a value of an
  /// earlier one among them.
  void readRow() {
    const Operation* operation = rest().front().operation;
    m_row.clear();
    m_rowBegin = m_results.size();
    if (operation->runRow == nullptr) return;
    for (const ScriptStep& step : rest()) {
      if (step.operation != operation) return;
      try {
        m_row.push_back(withValues(step, m_values));
      } catch (const CliError&) {
        return;
      }
    }
  }

  /// False where not even two steps can be done at once.
  bool runRow(std::span<const Arguments> row) {
    const Operation& operation = *rest().front().operation;
    for (; row.size() > 1; row = row.first(row.size() / 2)) {
      std::vector<StepResult> done = operation.runRow(m_editing, row);
      if (done.empty()) continue;
      m_longest = 2 * row.size();
      for (StepResult& result : done) note(std::move(result));
      return true;
    }
    m_longest = 2;
    return false;
  }

  void runOne() { note(runStep(m_editing, rest().front(), m_values)); }

  static constexpr std::size_t kLongestRow = 1 << 20;

  Editing& m_editing;
  std::span<const ScriptStep> m_steps;
  std::vector<StepResult> m_results;
  StepValues m_values;
  std::vector<Arguments> m_row;  // of the steps from m_rowBegin
  std::size_t m_rowBegin = 0;
  std::size_t m_longest = kLongestRow;
};

std::vector<StepResult> runSteps(OdDbDatabase& drawing, const std::vector<ScriptStep>& steps) {
  Editing editing(drawing);
  vdm_host::EditGroup group(editing.editor);
  std::vector<StepResult> results = ScriptRun(editing, steps).run();
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
