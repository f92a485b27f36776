// `vdm export`: model space as a STEP file.
#include "host/cli/export_command.h"

#include "host/cli/opened_drawing.h"
#include "host/cli/report.h"
#include "host/cli/text_lines.h"
#include "platform/modeler/step_drawing.h"

namespace cli {

int runExport(const SessionSettings& settings, const ExportOptions& options) {
  checkInput(options.input);
  checkOutput(options.output, options.input);
  const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kRead);
  OdStepReport step;
  withProgress("writing " + options.output.path, [&] {
    requireModelled(exportStepFromDatabase(&*drawing, OdString(options.output.path), &step));
  });
  Report("exported " + options.input + " to " + options.output.path)
      .add("file", options.output.path)
      .add("products", std::uint64_t{step.products})
      .add("solids", std::uint64_t{step.solids})
      .add("sheets", std::uint64_t{step.sheets})
      .add("occurrences", std::uint64_t{step.occurrences})
      .addLines("notes", linesOf(step.lines))
      .print(settings.json);
  return kDone;
}

}  // namespace cli
