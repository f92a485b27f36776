// The program `vdm`.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "host/cli/cli_error.h"
#include "host/cli/command_line.h"
#include "host/cli/text_output.h"
#include "host/supervision/supervised_run.h"
#include "platform/base/work_note.h"

namespace {

int reportDeath(const OdWorkDeath& death) {
  const std::string line =
      death.operation.empty() ? death.cause : death.operation + ": " + death.cause;
  cli::printError(line + (death.written ? "; a file was written before" : "; nothing was changed"));
  return death.written ? cli::kWritten : cli::kCouldNot;
}

/// A file that is opened while a standard stream is closed gets the number of the stream, and
/// output would go into it. A closed one is held by something that fails each use of it.
void holdStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const bool isClosed = ::fcntl(stream, F_GETFD) < 0;
    if (isClosed && ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace

// A command runs in a process of its own, so that what crashes or loops on bad geometry ends in one
// line. VDM_UNSUPERVISED=1 runs it in this one, for debuggers.
int main(int argc, char** argv) {
  holdStandardStreams();
  const auto work = [argc, argv] { return cli::runCommandLine(argc, argv); };
  const char* unsupervised = std::getenv("VDM_UNSUPERVISED");
  if (unsupervised != nullptr && *unsupervised == '1') {
    OdWorkBoard board;
    odInstallWorkBoard(&board);
    return work();
  }
  return supervision::runSupervised(work, reportDeath);
}
