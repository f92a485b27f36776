// The command line of `vdm`: what it takes, and what runs for it.
#pragma once

namespace cli {

/// Parses the arguments and runs the command that they name. Returns the exit code; errors are one
/// line on standard error, and so is each thing that could not be read. Files that were written are
/// those of the work board (platform/base/work_note.h), which has to be installed.
int runCommandLine(int argc, char** argv);

}  // namespace cli
