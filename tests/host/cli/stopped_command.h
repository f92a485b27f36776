// A command that is stopped on its way, while others work on the same drawing.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <string>

#include "tests/host/cli/script_case.h"

namespace cli_testing {

/// Runs `vdm LINE` in the folder of a shell. The command stops before a chosen step: a read of
/// a.vdm or a change of a lock on it; see stop_between_reads.cpp.
class StoppedCommand {
 public:
  StoppedCommand(const Shell& shell, std::string line);

  /// True when the command is stopped before step `at`, false when it ended before that; 0 lets it
  /// run to its end.
  bool start(std::size_t at);
  /// Lets the command go on to its end; its exit code, -1 when it was killed.
  int finish();
  /// What it printed, errors apart.
  [[nodiscard]] std::string output() const;
  [[nodiscard]] std::string errors() const;

 private:
  void take(int status);

  std::filesystem::path m_folder;
  std::string m_line;
  pid_t m_process = 0;
  bool m_isStopped = false;
  int m_exitCode = -1;
};

}  // namespace cli_testing
