// `vdm export`: model space as a STEP file.
#include "host/cli/export_command.h"

#include <array>
#include <ctime>

#include "host/cli/opened_drawing.h"
#include "host/cli/report.h"
#include "host/cli/text_lines.h"
#include "platform/modeler/step_drawing.h"

namespace cli {

namespace {

/// In universal time: the file does not say in which zone its writer was.
std::string timeStampNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  gmtime_r(&now, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text.data();
}

}  // namespace

int runExport(const SessionSettings& settings, const ExportOptions& options) {
  checkInput(options.input);
  const OdNameClaim claim = claimOutput(options.output, {options.input});
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  OdStepReport step;
  OdStepExportOptions stepOptions;
  stepOptions.originatingSystem = OdString(std::string("vdm ") + VDM_VERSION);
  if (!options.reproducible) stepOptions.timeStamp = OdString(timeStampNow());
  withProgress("writing " + options.output.path, [&] {
    requireModelled(
        exportStepFromDatabase(&*drawing, OdString(options.output.path), &step, stepOptions));
  });
  Report("exported " + options.input + " to " + options.output.path)
      .add("file", options.output.path)
      .add("products", std::uint64_t{step.products})
      .add("solids", std::uint64_t{step.solids})
      .add("sheets", std::uint64_t{step.sheets})
      .add("occurrences", std::uint64_t{step.occurrences})
      .addLines("notes", linesOf(step.lines))
      .addLines("left_out", linesOf(step.leftOut), "left out: ")
      .print(settings.json);
  return kDone;
}

}  // namespace cli
