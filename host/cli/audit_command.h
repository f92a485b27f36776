// `vdm audit`: checks a drawing, and mends it when asked to.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct AuditOptions {
  std::string input;
  bool fix = false;
  bool sarif = false;  ///< print SARIF 2.1.0
};

/// kNotSound when findings remain.
int runAudit(const SessionSettings& settings, const AuditOptions& options);

}  // namespace cli
