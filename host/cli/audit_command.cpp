// `vdm audit`: checks a drawing, and mends it when asked to.
#include "host/cli/audit_command.h"

#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/report.h"
#include "host/cli/text_lines.h"
#include "platform/db/audit_info.h"

namespace cli {

namespace {

/// Every record against its checksum and the file against its digest; empty when all is sound.
std::string fileFinding(OdDbDatabase& drawing) {
  const OdStatus status = drawing.loadAll();
  if (status.ok()) return {};
  return status.text.isEmpty() ? odResultText(status.code) : str(status.text);
}

/// A sound file holds nothing that mending could change: it is left untouched.
void saveMended(OdDbDatabase& drawing, const OdDbAuditInfo& mended) {
  if (mended.numFixes() != 0) saveDrawing(drawing);
}

}  // namespace

int runAudit(const SessionSettings& settings, const AuditOptions& options) {
  using Access = DrawingSession::Access;
  OpenedDrawing drawing(settings, options.input, options.fix ? Access::kWrite : Access::kRead);
  drawing.session().reportNoReadFaults();  // they are findings
  OdDbAuditInfo findings(options.fix);
  OdDbAuditInfo rest;
  std::string damage;
  withProgress("checking " + options.input, [&] {
    damage = fileFinding(*drawing);
    drawing->audit(&findings);
    if (!options.fix) return;
    drawing->audit(&rest);
    saveMended(*drawing, findings);
  });
  const std::uint64_t damages = damage.empty() ? 0 : 1;
  const std::uint64_t remaining = damages + (options.fix ? rest.numErrors() : findings.numErrors());
  std::vector<std::string> lines = linesOf(findings.lines());
  if (!damage.empty()) lines.insert(lines.begin(), damage);
  Report((remaining == 0 ? "sound: " : "not sound: ") + options.input)
      .add("file", options.input)
      .add("objects", drawing->approxNumObjects())
      .add("findings", damages + findings.numErrors())
      .add("mended", std::uint64_t{findings.numFixes()})
      .add("remaining", remaining)
      .addLines("lines", std::move(lines))
      .print(settings.json);
  return exitCodeFor(remaining == 0);
}

}  // namespace cli
