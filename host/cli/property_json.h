// Values of properties as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/cli/property_node.h"
#include "platform/db/database.h"

namespace cli {

// The typed form, which is printed and read:
//
//   {"type": "double", "value": 12.5}
//   {"type": "array", "of": "long", "value": [1, 2]}
//   {"type": "map", "key": "string", "of": "bool", "value": {"a": true}}
//   {"type": "map", "key": "long", "of": "string", "value": [[1, "one"], [2, "two"]]}
//
// Handles, ids ("soft-pointer:1F") and blobs (hexadecimal) are strings as on the command line. An
// element or value of kind "value" is itself an object of the typed form. The bare form is what
// is the member "value".

/// The typed form.
[[nodiscard]] nlohmann::ordered_json typedJson(const PropertyNode& node);

/// From the typed form. CliError naming what does not fit; nothing is guessed.
[[nodiscard]] PropertyNode parseTypedJson(const std::string& text, const OdDbDatabase& drawing);
/// Arrays and maps from the bare form. An open element or key type is taken from the values when
/// they are all of one kind: text, truth, integer (long), number (double), or typed object.
[[nodiscard]] PropertyNode parseBareJson(const PropertyKind& kind, const std::string& text,
                                         const OdDbDatabase& drawing);

}  // namespace cli
