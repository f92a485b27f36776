// Suppression by an expression.
#pragma once

#include <string>

#include "host/cli/operation.h"

namespace cli {

/// From now on the feature, by its name or handle, is suppressed while the expression is not 0: a
/// component, or a group that suppresses its members.
StepResult suppressWhen(Editing& editing, const std::string& name, const std::string& expression);

}  // namespace cli
