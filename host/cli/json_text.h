// JSON as the commands print it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace cli {

/// Indented, keys in their order, with a line end. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string jsonText(const nlohmann::ordered_json& value);

}  // namespace cli
