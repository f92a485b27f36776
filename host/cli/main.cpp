// The program `vdm`.
#include "host/cli/command_line.h"

int main(int argc, char** argv) { return cli::runCommandLine(argc, argv); }
