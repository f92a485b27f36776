// `vdm export`: model space as a STEP file.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct ExportOptions {
  std::string input;
  OutputFile output;
  bool reproducible = false;  ///< one drawing gives one file: no date
};

int runExport(const SessionSettings& settings, const ExportOptions& options);

}  // namespace cli
