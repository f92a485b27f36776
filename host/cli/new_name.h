// Names that a command gives to things.
#pragma once

#include <string>

class OdDbDatabase;

namespace cli {

/// Characters that a name may have, as many as a name of a layer or block.
inline constexpr std::size_t kMaxNameLength = 255;

/// Raises CliError for a name that is empty, too long or not UTF-8.
void requireName(const std::string& name);

/// Raises CliError for a name that a feature, component or reference cannot get: what
/// requireName() refuses, one that reads as a handle, and one that is taken in the drawing.
void requireFreeName(OdDbDatabase& drawing, const std::string& name);

/// Raises CliError of kWrongUsage unless the value is UTF-8. `what` says whose value it is.
void requireUtf8(const std::string& what, const std::string& value);

}  // namespace cli
