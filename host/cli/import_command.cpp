// `vdm import`: a STEP file as a drawing.
#include "host/cli/import_command.h"

#include "host/cli/drawing_facts.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/report.h"
#include "host/cli/text_lines.h"
#include "platform/modeler/step_drawing.h"

namespace cli {

int runImport(const SessionSettings& settings, const ImportOptions& options) {
  checkInput(options.input);
  const OdNameClaim claim = claimOutput(options.output, {options.input});
  DrawingSession runtime(settings);
  const OdDbDatabasePtr drawing = runtime.create();
  OdStepReport step;
  OdStepImportOptions stepOptions;
  stepOptions.curves = options.curves;
  stepOptions.annotations = options.annotations;
  stepOptions.encoding = OdString(options.encoding);
  withProgress("reading " + options.input, [&] {
    requireModelled(
        importStepIntoDatabase(drawing.get(), OdString(options.input), &step, stepOptions));
  });
  withProgress("writing " + options.output.path,
               [&] { saveDrawingAs(*drawing, options.output.path); });
  const DrawingCounts counts = countDrawing(*drawing);
  Report("imported " + options.input + " into " + options.output.path)
      .add("file", options.output.path)
      .add("solids", std::uint64_t{step.solids})
      .add("sheets", std::uint64_t{step.sheets})
      .add("blocks", counts.blocks)
      .add("inserts", counts.inserts)
      .add("units", unitsName(*drawing))
      .add("source_units", str(step.sourceUnit))
      .addLines("notes", linesOf(step.lines))
      .addLines("left_out", linesOf(step.leftOut), "left out: ")
      .addLines("not_read", linesOf(step.lost), "not read: ")
      .print(settings.json);
  return step.lost.isEmpty() ? kDone : kNotSound;
}

}  // namespace cli
