// The program `vdm`.
#include <cstdlib>

#include "host/cli/cli_error.h"
#include "host/cli/command_line.h"
#include "host/cli/text_output.h"
#include "host/supervision/supervised_run.h"

namespace {

int reportDeath(const OdWorkDeath& death) {
  const std::string line =
      death.operation.empty() ? death.cause : death.operation + ": " + death.cause;
  cli::printError(line + (death.written ? "; a file was written before" : "; nothing was changed"));
  return cli::kCouldNot;
}

}  // namespace

// A command runs in a process of its own, so that what crashes or loops on bad geometry ends in one
// line. VDM_UNSUPERVISED=1 runs it in this one, for debuggers.
int main(int argc, char** argv) {
  const auto work = [argc, argv] { return cli::runCommandLine(argc, argv); };
  const char* unsupervised = std::getenv("VDM_UNSUPERVISED");
  if (unsupervised != nullptr && *unsupervised == '1') return work();
  return supervision::runSupervised(work, reportDeath);
}
