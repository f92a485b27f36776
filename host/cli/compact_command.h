// `vdm compact`: a drawing file without its free space.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct CompactOptions {
  std::string input;
};

int runCompact(const SessionSettings& settings, const CompactOptions& options);

}  // namespace cli
