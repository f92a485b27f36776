// `vdm faces`, `vdm edges`, `vdm vertices`, `vdm holes`: what a solid is made of.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "platform/modeler/subentity.h"

namespace cli {

struct InspectOptions {
  std::string input;
  std::string solid;  ///< name or handle; empty: all solids
  std::string where;  ///< selector; empty: everything
  bool csv = false;   ///< of holes
};

/// CliError for a selector that cannot be read, and for one that matches nothing: it names what
/// comes nearest.
int runFaces(const SessionSettings& settings, const InspectOptions& options);
int runEdges(const SessionSettings& settings, const InspectOptions& options);
int runVertices(const SessionSettings& settings, const InspectOptions& options);
/// Openings with their sizes and patterns.
int runHoles(const SessionSettings& settings, const InspectOptions& options);

}  // namespace cli
