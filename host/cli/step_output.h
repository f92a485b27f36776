// What an operation and its update pass did, as text and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/cli/operation.h"

namespace cli {

/// Done, and nothing failed, got lost or became ambiguous.
[[nodiscard]] bool isSound(const StepResult& step);

/// The headline, then what happened to features and references, indented. With `explain` also the
/// features that had nothing to do, reasons, phases and times. The drawing is open still.
[[nodiscard]] std::string stepText(const StepResult& step, bool explain);
/// {"headline", "values", "notes", "sound", "update": {"features", "references", ...}}.
[[nodiscard]] nlohmann::ordered_json stepJson(const StepResult& step);

}  // namespace cli
