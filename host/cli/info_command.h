// `vdm info`: what a drawing holds.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct InfoOptions {
  std::string input;
};

/// kNotSound when objects cannot be read.
int runInfo(const SessionSettings& settings, const InfoOptions& options);

}  // namespace cli
