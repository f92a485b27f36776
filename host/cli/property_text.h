// Kinds and values of properties as texts on a command line.
#pragma once

#include <string>
#include <string_view>

#include "host/cli/property_node.h"
#include "platform/db/database.h"

namespace cli {

/// What `--type` takes, for help texts.
inline constexpr const char* kTypeHelp =
    "string, long, double, bool, char, handle, id, blob, array:ELEMENT or map:KEY:VALUE "
    "(ELEMENT and VALUE: a type, or value for nested ones)";

/// "double", "array:double", "map:string:value".
[[nodiscard]] std::string kindText(const PropertyKind& kind);
/// The reverse; "array" and "map" alone leave element and key open (0). CliError (kWrongUsage) for
/// any other text.
[[nodiscard]] PropertyKind parseKind(const std::string& text);

/// The value for people, on one line without control characters.
[[nodiscard]] std::string nodeText(const PropertyNode& node);
/// The value as the command line would take it again: a string as it is.
[[nodiscard]] std::string plainText(const PropertyNode& node);

/// A value that is neither array nor map from its text. Ids are "REFERENCE:HANDLE" or "HANDLE" (a
/// soft pointer), REFERENCE being soft-pointer, hard-pointer, soft-owner or hard-owner; blobs are
/// hexadecimal. CliError naming the text and the type when it is none such, or when an id names no
/// object of the drawing.
[[nodiscard]] PropertyNode parseScalar(VdmPropertyType type, const std::string& text,
                                       const OdDbDatabase& drawing);
/// The same from numbers.
[[nodiscard]] PropertyNode makeDouble(double value);
[[nodiscard]] PropertyNode makeInteger(VdmPropertyType type, long long value);

/// "'<text>' is not a <type>, <what that is>".
[[nodiscard]] std::string mismatchText(std::string_view text, VdmPropertyType type);

/// Lower-case hexadecimal.
[[nodiscard]] std::string hexText(const VdmBlob& bytes);

}  // namespace cli
