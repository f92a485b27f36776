// `vdm audit`: checks a drawing, and mends it when asked to.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct AuditOptions {
  std::string input;
  bool fix = false;
};

/// kNotSound when findings remain.
int runAudit(const SessionSettings& settings, const AuditOptions& options);

}  // namespace cli
