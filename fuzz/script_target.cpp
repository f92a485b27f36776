// Fuzz target: scripts of edits, from their text to the values that each step works with.
#include "fuzz/fuzz_support.h"
#include "fuzz/fuzz_target.h"
#include "host/cli/cli_error.h"
#include "host/cli/edit_script.h"
#include "host/cli/text_output.h"

namespace {

/// A refusal is one line that a terminal can show.
void requireLine(const cli::CliError& error) {
  const std::string text = error.what();
  fuzzRequire(!text.empty() && cli::isUtf8(cli::oneLine(text)), "a refusal that cannot be shown");
  fuzzRequire(error.code() == cli::kWrongUsage, "a wrong script is wrong usage");
}

/// Reads a value in each way; one of them fits.
void readValue(const cli::Arguments& arguments, const std::string& name) {
  using Read = void (*)(const cli::Arguments&, const std::string&);
  constexpr Read kReads[] = {
      [](const cli::Arguments& a, const std::string& n) { (void)a.number(n); },
      [](const cli::Arguments& a, const std::string& n) { (void)a.point(n); },
      [](const cli::Arguments& a, const std::string& n) { (void)a.vector(n); },
  };
  for (const Read read : kReads) {
    try {
      read(arguments, name);
    } catch (const cli::CliError& error) {
      requireLine(error);
    }
  }
}

void readStep(const cli::ScriptStep& step, cli::StepValues& values) {
  fuzzRequire(step.operation != nullptr, "a step without an operation");
  const cli::Arguments arguments = cli::withValues(step, values);
  for (const cli::Parameter& parameter : step.operation->parameters) {
    if (arguments.has(parameter.name)) readValue(arguments, parameter.name);
  }
  cli::StepResult result;
  result.values = {{"handle", "2A"}};
  cli::noteValues(step, result, values);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const std::string text(data, data + size);
    cli::StepValues values;
    for (const cli::ScriptStep& step : cli::parseScript(text, "fuzz")) readStep(step, values);
  } catch (const cli::CliError& error) {
    requireLine(error);
  }
  return 0;
}

std::vector<FuzzInput> fuzzCorpus() {
  const std::string scripts[] = {
      R"([{"op": "update"}])",
      R"([{"op": "insert", "component": "m8", "on": "2A", "at": [20, 20, 16], "as": "a"},
          {"op": "move", "entity": "$a.handle", "by": "1,2,-3e2"},
          {"op": "rotate", "entity": "$a", "angle": 30.5, "axis": "z", "about": [0, 0, 0]}])",
      R"([{"op": "fillet", "edges": ["rim", "front"], "radius": 2},
          {"op": "update", "force": true}, {"op": "replace", "solid": "21", "file": "b.step"}])",
      R"([{"op": "refs add", "solid": "21", "at": "1,2,3", "face": true, "name": "ä\u00e4\n"}])",
  };
  std::vector<FuzzInput> corpus;
  for (const std::string& script : scripts) corpus.emplace_back(script.begin(), script.end());
  return corpus;
}
