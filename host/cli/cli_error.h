// How a command ends: exit codes, and the error that becomes one line on standard error.
#pragma once

#include <stdexcept>
#include <string>

namespace cli {

/// Exit codes of every command.
enum ExitCode : int {
  kDone = 0,
  kCouldNot = 1,    ///< nothing was changed
  kWrongUsage = 2,  ///< the command line itself is wrong; nothing was changed
  kNotSound = 3,    ///< done, but the drawing has findings or lost something
  kWritten = 4,     ///< a file was written, and what should follow could not be done
};

/// Ends a command. The line is lower case, has no full stop, and names the thing and the values
/// concerned; the program's name is put in front of it.
class CliError : public std::runtime_error {
 public:
  explicit CliError(const std::string& line, ExitCode code = kCouldNot)
      : std::runtime_error(line), m_code(code) {}

  [[nodiscard]] ExitCode code() const { return m_code; }

 private:
  ExitCode m_code;
};

}  // namespace cli
