// `vdm config list|find|export`: tables of configurations.
#pragma once

#include <string>

#include "host/cli/drawing_session.h"
#include "host/cli/paths.h"

namespace cli {

struct ConfigOptions {
  std::string input;
  std::string block;  ///< empty: model space
  std::string table;  ///< empty: the only one
  OutputFile output;  ///< export
};

/// All tables of the block, with rows and columns.
int runConfigList(const SessionSettings& settings, const ConfigOptions& options);
/// Which row the model is in now, or the nearest rows and the cells in which they differ.
int runConfigFind(const SessionSettings& settings, const ConfigOptions& options);
/// A table as a file of comma-separated values.
int runConfigExport(const SessionSettings& settings, const ConfigOptions& options);

}  // namespace cli
