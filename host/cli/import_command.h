// `vdm import`: a STEP file as a drawing.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct ImportOptions {
  std::string input;
  OutputFile output;
  bool curves = false;       ///< take over wireframe, too
  bool annotations = false;  ///< and drawn annotations
  std::string encoding;      ///< of names; empty to find it out
};

int runImport(const SessionSettings& settings, const ImportOptions& options);

}  // namespace cli
