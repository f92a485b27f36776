// The first 100 bytes of a drawing file: what it is, which version, and the fixed fields.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/db/record_store.h"

namespace odstorage {

inline constexpr std::size_t kFileHeaderBytes = 100;
using FileHeader = std::array<std::uint8_t, kFileHeaderBytes>;

/// Refuses what is no drawing before SQLite looks at it: eNotADrawing names both application ids,
/// eNewerFormat, eUnsupportedVersion. `version` receives the file's format version, for
/// eNewerFormat too.
[[nodiscard]] OdStatus identify(const FileHeader& header, std::string_view path, int& version);

/// The text for a file of a newer format.
[[nodiscard]] OdStatus newerFormat(std::string_view path, int version);

/// Compares the fields whose value never changes in a drawing; eCorruptData names the field and
/// both values. They decide how the rest is read, so a flipped bit here must not pass.
[[nodiscard]] OdStatus checkFixedFields(const FileHeader& header, std::string_view path);

}  // namespace odstorage
