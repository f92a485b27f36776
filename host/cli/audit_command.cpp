// `vdm audit`: checks a drawing, and mends it when asked to.
#include "host/cli/audit_command.h"

#include <nlohmann/json.hpp>

#include "host/cli/audit_output.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/paths.h"
#include "host/cli/report.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using vdm_host::DrawingAudit;

std::vector<std::string> linesOfFindings(const DrawingAudit& audit) {
  std::vector<std::string> lines;
  for (const vdm_host::DrawingFinding& finding : audit.findings) {
    lines.push_back(findingLine(finding));
  }
  return lines;
}

Json auditJson(const AuditOptions& options, const DrawingAudit& audit, std::uint64_t objects) {
  return {{"file", options.input},           {"objects", objects},
          {"findings", audit.errors},        {"notes", audit.findings.size() - audit.errors},
          {"mended", audit.mended},          {"remaining", audit.remaining},
          {"lines", linesOfFindings(audit)}, {"list", findingsJson(audit.findings)}};
}

void print(const SessionSettings& settings, const AuditOptions& options, const DrawingAudit& audit,
           std::uint64_t objects) {
  if (options.sarif) return printOut(jsonText(findingsSarif(audit.findings, options.input)));
  if (settings.json) return printOut(jsonText(auditJson(options, audit, objects)));
  Report((audit.isSound() ? "sound: " : "not sound: ") + options.input)
      .add("file", options.input)
      .add("objects", objects)
      .add("findings", std::uint64_t{audit.errors})
      .add("mended", std::uint64_t{audit.mended})
      .add("remaining", std::uint64_t{audit.remaining})
      .addLines("lines", linesOfFindings(audit))
      .print(/*asJson=*/false);
}

}  // namespace

int runAudit(const SessionSettings& settings, const AuditOptions& options) {
  using Access = DrawingSession::Access;
  OpenedDrawing drawing(settings, options.input, options.fix ? Access::kWrite : Access::kRead);
  drawing.session().reportNoReadFaults();  // they are findings
  vdm_host::AuditParts parts;
  parts.features = parts.references = !settings.noModules;
  const auto mode = options.fix ? vdm_host::AuditMode::kFix : vdm_host::AuditMode::kLook;
  const DrawingAudit audit = withProgress("checking " + options.input, [&] {
    DrawingAudit found = vdm_host::auditDrawing(&*drawing, mode, parts);
    // A sound file holds nothing that mending could change: it is left untouched.
    if (found.mended != 0) saveDrawing(*drawing);
    return found;
  });
  print(settings, options, audit, drawing->approxNumObjects());
  return exitCodeFor(audit.isSound());
}

}  // namespace cli
