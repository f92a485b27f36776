// `vdm clone`: a copy of a block or an entity, in its drawing or in another one.
#pragma once

#include <optional>
#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct CloneOptions {
  std::string input;
  std::string handle;
  std::string into;                  ///< the other drawing; empty: the same one
  std::string name;                  ///< of a cloned block; empty: chosen
  bool withFeatures = false;         ///< an entity takes its names and components along
  std::optional<OutputFile> output;  ///< where the result is saved; otherwise in its own file
};

int runClone(const SessionSettings& settings, const CloneOptions& options);

}  // namespace cli
