// Building of store outcomes: a code and one line that names the file and the values concerned.
#pragma once

#include <string>
#include <string_view>

#include "platform/db/record_store.h"

namespace odstorage {

/// The outcome `code` with the text "<path>: <what>"; both are UTF-8.
[[nodiscard]] OdStatus failure(OdResult code, std::string_view path, std::string_view what);

/// The outcome of a failed file operation, from its errno value: eDiskFull, eFileNotFound,
/// eFileLocked, eOutOfMemory or eFileAccess.
[[nodiscard]] OdStatus systemFailure(int error, std::string_view path, std::string_view doing);

/// The outcome of a save whose last step failed, after the new state was in its place: the system
/// would not confirm that the names in the folder are on the disk.
[[nodiscard]] OdStatus savedWithoutFolder(int error, std::string_view path);

/// True for the errno values that mean that no space or quota is left.
[[nodiscard]] bool isDiskFull(int error);

/// A handle as messages show it: hexadecimal, upper case.
[[nodiscard]] std::string handleText(OdUInt64 handle);

/// A string of the interface as UTF-8.
[[nodiscard]] std::string utf8(const OdString& text);

}  // namespace odstorage
