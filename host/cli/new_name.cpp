#include "host/cli/new_name.h"

#include <vector>

#include "host/cli/cli_error.h"
#include "host/cli/model_lookup.h"
#include "host/cli/text_output.h"

namespace cli {

namespace {

[[noreturn]] void refuse(const std::string& name, const std::string& why) {
  throw CliError("name " + quote(shortened(name, kTextWidth / 2)) + " " + why, kWrongUsage);
}

}  // namespace

void requireUtf8(const std::string& what, const std::string& value) {
  if (isUtf8(value)) return;
  throw CliError(what + " " + quote(shortened(value, kTextWidth / 2)) + " is not UTF-8",
                 kWrongUsage);
}

void requireName(const std::string& name) {
  if (name.empty()) refuse(name, "is empty");
  requireUtf8("name", name);
  if (const std::size_t length = columnsOf(name); length > kMaxNameLength) {
    refuse(name, "has " + std::to_string(length) + " characters, at most " +
                     std::to_string(kMaxNameLength) + " are allowed");
  }
}

void requireFreeName(OdDbDatabase& drawing, const std::string& name) {
  requireName(name);
  OdDbHandle handle;
  if (OdDbHandle::parse(name.c_str(), handle)) {
    refuse(name, "reads as a handle, choose another one");
  }
  const std::vector<OdDbObjectId> taken = featuresNamed(drawing, name);
  if (taken.empty()) return;
  throw CliError("name " + quote(name) + " is taken by " + objectText(taken.front()));
}

}  // namespace cli
