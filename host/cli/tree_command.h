// `vdm tree`: the product structure of a drawing.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

struct TreeOptions {
  std::string input;
};

/// kNotSound when something cannot be read.
int runTree(const SessionSettings& settings, const TreeOptions& options);

}  // namespace cli
