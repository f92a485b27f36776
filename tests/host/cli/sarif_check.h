// What SARIF 2.1.0 requires of a log, as far as a log of findings goes.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace cli_testing {

/// Each violation as a line that begins with its place; none for a sound log. Properties that the
/// standard does not know are violations, too: its objects are closed but for property bags.
std::vector<std::string> sarifFaults(const nlohmann::json& log);

}  // namespace cli_testing
