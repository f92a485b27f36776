// The command line of `vdm`: what it takes, and what runs for it.
#pragma once

namespace cli {

/// Parses the arguments and runs the command that they name. Returns the exit code; errors are one
/// line on standard error.
int runCommandLine(int argc, char** argv);

}  // namespace cli
