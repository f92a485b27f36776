// JSON as the commands print it.
#include "host/cli/json_text.h"

#include <nlohmann/json.hpp>

namespace cli {

std::string jsonText(const nlohmann::ordered_json& value) {
  return value.dump(2, ' ', /*ensure_ascii=*/false,
                    nlohmann::ordered_json::error_handler_t::replace) +
         "\n";
}

}  // namespace cli
