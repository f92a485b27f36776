// `vdm feature list`, `vdm component list`, `vdm group --list`: what a model is made of.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

int runFeatureList(const SessionSettings& settings, const std::string& input);
int runComponentList(const SessionSettings& settings, const std::string& input);
int runGroupList(const SessionSettings& settings, const std::string& input);

}  // namespace cli
