// Building of store outcomes.
#include "platform/storage/status.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <system_error>

namespace odstorage {

OdStatus failure(OdResult code, std::string_view path, std::string_view what) {
  std::string text;
  text.reserve(path.size() + what.size() + 2);
  text.append(path).append(": ").append(what);
  return {code, OdString(text.c_str())};
}

bool isDiskFull(int error) { return error == ENOSPC || error == EDQUOT; }

OdStatus systemFailure(int error, std::string_view path, std::string_view doing) {
  OdResult code = eFileAccess;
  if (isDiskFull(error)) code = eDiskFull;
  if (error == ENOENT || error == ENOTDIR) code = eFileNotFound;
  if (error == ENOMEM) code = eOutOfMemory;
  if (error == EIO) code = eFileWriteError;
  std::string what(doing);
  what.append(" failed: ").append(std::generic_category().message(error));
  return failure(code, path, what);
}

OdStatus savedWithoutFolder(int error, std::string_view path) {
  return failure(eFileWriteError, path,
                 "the file is saved, but writing its folder to disk failed: " +
                     std::generic_category().message(error) +
                     "; a power loss may bring the old state back");
}

std::string handleText(OdUInt64 handle) {
  char text[20];
  std::snprintf(text, sizeof text, "%" PRIX64, static_cast<std::uint64_t>(handle));
  return text;
}

std::string utf8(const OdString& text) {
  const char* narrow = text;
  return narrow;
}

}  // namespace odstorage
