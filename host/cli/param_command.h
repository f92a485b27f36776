// `vdm param list|get|explain|check`: what parameters a block has.
#pragma once

#include <string>
#include <vector>

#include "host/cli/drawing_session.h"

namespace cli {

struct ParamOptions {
  std::string input;
  std::string block;               ///< empty: model space
  std::vector<std::string> names;  ///< get, explain
};

/// All parameters with values, expressions, limits and users.
int runParamList(const SessionSettings& settings, const ParamOptions& options);
/// Values of some.
int runParamGet(const SessionSettings& settings, const ParamOptions& options);
/// What defines one, and all that depends on it, down to faces.
int runParamExplain(const SessionSettings& settings, const ParamOptions& options);
/// What could be wrong; kNotSound when something is.
int runParamCheck(const SessionSettings& settings, const ParamOptions& options);

}  // namespace cli
