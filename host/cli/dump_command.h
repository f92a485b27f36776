// `vdm dump`: every object of a drawing as text that can be compared.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct DumpOptions {
  std::string input;
};

/// kNotSound when objects cannot be read.
int runDump(const SessionSettings& settings, const DumpOptions& options);

}  // namespace cli
