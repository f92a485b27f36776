// `vdm compact`: a drawing file without its free space.
#include "host/cli/compact_command.h"

#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/report.h"

namespace cli {

int runCompact(const SessionSettings& settings, const CompactOptions& options) {
  const std::uint64_t before = fileSize(options.input);
  withProgress("compacting " + options.input, [&] {
    const OpenedDrawing drawing(settings, options.input, DrawingSession::Access::kWrite);
    compactDrawing(*drawing);
  });
  const std::uint64_t after = fileSize(options.input);
  Report("compacted " + options.input + ": " + byteCount(before) + " before, " + byteCount(after) +
         " after")
      .add("file", options.input)
      .add("bytes_before", before)
      .add("bytes_after", after)
      .print(settings.json);
  return kDone;
}

}  // namespace cli
