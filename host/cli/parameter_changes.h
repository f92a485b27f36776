// What operations on parameters, configurations and components have in common.
#pragma once

#include <functional>
#include <string>

#include "host/cli/operation.h"
#include "platform/base/status.h"

namespace cli {

inline constexpr Parameter kBlockParameter = {"block", ParameterKind::kText, false, false,
                                              "block that is meant; model space by default"};

/// Runs a change as one edit with one pass. The result has a note for each parameter of the block
/// that the change moved. `what` begins the line of a failure.
StepResult changeParameters(Editing& editing, const OdDbObjectId& block, const char* what,
                            std::string headline, const std::function<OdStatus()>& change);

/// The block's table of configurations of a name, or its only one. CliError without one.
OdDbObjectId findConfigurationTable(const OdDbObjectId& block, const std::string& name);

}  // namespace cli
