// `vdm props`: the typed properties of an object.
#pragma once

#include <optional>
#include <string>

#include "host/cli/drawing_session.h"

namespace cli {

/// All four actions; each uses what it needs.
struct PropsOptions {
  std::string input;
  std::string handle;
  std::string key;
  std::optional<std::string> value;      ///< set: in the form of the type
  std::optional<std::string> jsonValue;  ///< set: in the typed JSON form
  std::string type;                      ///< set: empty keeps the present type, string when new
};

int runPropsList(const SessionSettings& settings, const PropsOptions& options);
int runPropsGet(const SessionSettings& settings, const PropsOptions& options);
/// A value of another type than the present one is refused, and nothing changes.
int runPropsSet(const SessionSettings& settings, const PropsOptions& options);
int runPropsRemove(const SessionSettings& settings, const PropsOptions& options);

}  // namespace cli
