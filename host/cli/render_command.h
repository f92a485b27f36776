// `vdm render`: a picture or a model file of a drawing.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"
#include "host/rendering/render.h"

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

/// Size "1280x960" and view ("iso", "top", "2,-3,1") of a picture; CliError for wrong usage.
[[nodiscard]] rendering::RenderOptions lookOf(const std::string& size, const std::string& view);

/// kNotSound when something could not be drawn.
int runRender(const SessionSettings& settings, const RenderCommandOptions& options);

}  // namespace cli
