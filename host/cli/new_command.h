// `vdm new`: an empty drawing.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct NewOptions {
  OutputFile output;
  std::string units = "mm";  ///< name or symbol
};

int runNew(const SessionSettings& settings, const NewOptions& options);

}  // namespace cli
