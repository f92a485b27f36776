// Lines and failures of the runtime in the command's own terms.
#pragma once

#include <string>
#include <vector>

#include "host/cli/cli_error.h"
#include "host/cli/text_output.h"
#include "platform/base/array.h"
#include "platform/base/status.h"

namespace cli {

[[nodiscard]] inline std::vector<std::string> linesOf(const OdStringArray& lines) {
  std::vector<std::string> texts;
  for (const OdString& line : lines) texts.push_back(str(line));
  return texts;
}

/// Raises CliError when the modeller did not succeed.
inline void requireModelled(const OdStatus& status) {
  if (status.ok()) return;
  throw CliError(status.text.isEmpty() ? odResultText(status.code) : str(status.text));
}

}  // namespace cli
