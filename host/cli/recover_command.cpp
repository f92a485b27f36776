// `vdm recover`: what is intact in a damaged drawing, as a new one.
#include "host/cli/recover_command.h"

#include "host/cli/drawing_facts.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/report.h"
#include "host/cli/text_lines.h"

namespace cli {

int runRecover(const SessionSettings& settings, const RecoverOptions& options) {
  checkInput(options.input);
  const OdNameClaim claim = claimOutput(options.output, {options.input});
  DrawingSession runtime(settings);
  OdStringArray lost;
  const OdDbDatabasePtr drawing = withProgress("recovering " + options.input, [&] {
    OdDbDatabasePtr recovered = runtime.recover(options.input, lost);
    saveDrawingAs(*recovered, options.output.path);
    return recovered;
  });
  const DrawingCounts counts = countDrawing(*drawing);
  Report("recovered " + options.input + " as " + options.output.path)
      .add("file", options.output.path)
      .add("objects", counts.objects)
      .add("solids", counts.solids)
      .add("blocks", counts.blocks)
      .add("inserts", counts.inserts)
      .add("losses", std::uint64_t{lost.size()})
      .addLines("lines", linesOf(lost))
      .print(settings.json);
  return exitCodeFor(lost.isEmpty());
}

}  // namespace cli
