// `vdm compact`: a drawing file without its free space.
#include "host/cli/compact_command.h"

#include "host/cli/cli_error.h"
#include "host/cli/paths.h"
#include "host/cli/progress.h"
#include "host/cli/report.h"
#include "host/cli/text_output.h"

namespace cli {

int runCompact(const SessionOptions& session, const CompactOptions& options) {
  checkInput(options.input);
  const std::uint64_t before = fileSize(options.input);
  {
    DrawingSession runtime(session);
    const Progress progress("compacting " + options.input);
    const OdDbDatabasePtr drawing = runtime.open(options.input, DrawingSession::Access::kWrite);
    compactDrawing(*drawing);
  }
  const std::uint64_t after = fileSize(options.input);
  Report("compacted " + options.input + ": " + byteCount(before) + " before, " + byteCount(after) +
         " after")
      .add("file", options.input)
      .add("bytes_before", before)
      .add("bytes_after", after)
      .print(session.json);
  return kDone;
}

}  // namespace cli
