// JSON that users write, checked before it is read.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/cli/cli_error.h"

namespace cli {

/// What a text is refused for.
struct JsonFault {
  enum class Kind {
    kSyntax,  ///< no JSON, or a number that no type can hold
    kTwin,    ///< a key that comes twice would silently lose its first value
    kDepth,   ///< depth costs a reader's stack
  };
  Kind kind = Kind::kSyntax;
  std::size_t position = 0;  ///< kSyntax: byte, from 1
  std::string key;           ///< kTwin
};

inline constexpr std::size_t kAnyDepth = std::numeric_limits<std::size_t>::max();

/// Reads a text in linear time. CliError of kWrongUsage or kCouldNot, as `code` says, with the line
/// that `lineOf` makes of the first fault.
[[nodiscard]] nlohmann::ordered_json parseJson(
    const std::string& text, std::size_t maxDepth,
    const std::function<std::string(const JsonFault&)>& lineOf, ExitCode code);

}  // namespace cli
