// `vdm recover`: what is intact in a damaged drawing, as a new one.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct RecoverOptions {
  std::string input;
  OutputFile output;
};

/// kNotSound when something was lost.
int runRecover(const SessionSettings& settings, const RecoverOptions& options);

}  // namespace cli
