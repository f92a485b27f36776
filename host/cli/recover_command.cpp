// `vdm recover`: what is intact in a damaged drawing, as a new one.
#include "host/cli/recover_command.h"

#include "host/cli/cli_error.h"
#include "host/cli/drawing_facts.h"
#include "host/cli/progress.h"
#include "host/cli/report.h"
#include "host/cli/text_lines.h"

namespace cli {

int runRecover(const SessionOptions& session, const RecoverOptions& options) {
  checkInput(options.input);
  checkOutput(options.output, options.input);
  DrawingSession runtime(session);
  OdStringArray lost;
  OdDbDatabasePtr drawing;
  {
    const Progress progress("recovering " + options.input);
    drawing = runtime.recover(options.input, lost);
    saveDrawingAs(*drawing, options.output.path);
  }
  const DrawingCounts counts = countDrawing(*drawing);
  Report("recovered " + options.input + " as " + options.output.path)
      .add("file", options.output.path)
      .add("objects", counts.objects)
      .add("solids", counts.solids)
      .add("blocks", counts.blocks)
      .add("inserts", counts.inserts)
      .add("losses", std::uint64_t{lost.size()})
      .addLines("lines", linesOf(lost))
      .print(session.json);
  return lost.isEmpty() ? kDone : kNotSound;
}

}  // namespace cli
