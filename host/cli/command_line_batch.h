// The command line of `vdm batch`.
#pragma once

#include "host/cli/batch_command.h"
#include "host/cli/command_parts.h"

namespace cli {

void addBatch(CLI::App& app, CommandRun& line, BatchOptions& options);

}  // namespace cli
