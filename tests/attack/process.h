// Commands as processes of their own, and what became of them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace attack {

struct Outcome {
  int exitCode = -1;       ///< -1 when it died of a signal
  int signal = 0;          ///< 0 when it ended by itself
  bool isLate = false;     ///< it was killed because of its time
  double seconds = 0.0;    ///< of processor time, its children included
  double megabytes = 0.0;  ///< the most memory that it or a child had
  std::string output;
  std::string errors;
};

struct Command {
  std::vector<std::string> words;  ///< the program first
  std::filesystem::path folder;    ///< where it runs
  std::string outputFile = {};     ///< standard output goes there instead; may be a device
  bool closedOutput = false;       ///< standard output is a pipe without a reader
  std::string input = {};          ///< standard input
  int killAfterMicroseconds = -1;  ///< SIGKILL to its whole process group then; -1: never
};

/// Runs it and waits for it, 60 s at most.
[[nodiscard]] Outcome run(const Command& command);

/// As a shell takes it, for reports.
[[nodiscard]] std::string textOf(const Command& command);

}  // namespace attack
