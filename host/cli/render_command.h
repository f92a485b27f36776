// `vdm render`: a picture or a model file of a drawing.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct RenderCommandOptions {
  std::string input;
  OutputFile output;  ///< .png, .svg or .glb
  std::string size = "1280x960";
  std::string view = "iso";
  std::string block;  ///< model space when empty
  bool labels = false;
  bool noFeatureColors = false;
};

/// kNotSound when something could not be drawn.
int runRender(const SessionSettings& settings, const RenderCommandOptions& options);

}  // namespace cli
