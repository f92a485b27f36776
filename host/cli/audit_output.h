// Findings of a check as text, JSON and SARIF.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/modeling/drawing_audit.h"

namespace cli {

/// "<text>, <remedy> would be set [code]"; "is set" once it is mended.
[[nodiscard]] std::string findingLine(const vdm_host::DrawingFinding& finding);
/// {"code", "level", "handle", "text", "fix", "mended", "alike"}, in their order.
[[nodiscard]] nlohmann::ordered_json findingsJson(
    const std::vector<vdm_host::DrawingFinding>& findings);
/// A log of version 2.1.0 with one run; each code that was found is a rule, each finding a result
/// at the file `input` and at its object.
[[nodiscard]] nlohmann::ordered_json findingsSarif(
    const std::vector<vdm_host::DrawingFinding>& findings, const std::string& input);

}  // namespace cli
