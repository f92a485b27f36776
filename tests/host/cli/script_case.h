// Scripts that drive the command: command lines, and what each is to print and to return.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace cli_testing {

// A script is a file of lines:
//
//   # text            a remark
//   $ command         a shell command, run in the script's own folder; the program `vdm` is on the
//                     path, and $SAMPLES names the folder with the samples of make_samples
//   > pattern         the next line of standard output; "> ..." matches any number of lines
//   ! pattern         the next line of standard error
//   = number          the exit code, 0 when it is not given
//
// In patterns * matches any text. @name@ matches a word, which later lines and commands of
// the script use by the same name.

/// One command of a script with what is expected of it.
struct Step {
  std::size_t line = 0;
  std::string command;
  std::vector<std::string> output;
  std::vector<std::string> errors;
  int exitCode = 0;
};

/// Raises std::runtime_error naming the line that cannot be read, or a script without commands.
std::vector<Step> readScript(const std::filesystem::path& path);

/// The results of a command.
struct Outcome {
  int exitCode = -1;
  std::vector<std::string> output;
  std::vector<std::string> errors;
};

/// A folder of its own in which commands run.
class Shell {
 public:
  /// Empties the folder first.
  explicit Shell(std::filesystem::path folder);

  [[nodiscard]] const std::filesystem::path& folder() const { return m_folder; }
  [[nodiscard]] Outcome run(const std::string& command) const;
  /// Contents of every file below the folder, by path.
  [[nodiscard]] std::map<std::string, std::string> files() const;

 private:
  std::filesystem::path m_folder;
};

/// The words that a script has given names to.
using Words = std::map<std::string, std::string>;

/// The command with the words in place of their names.
std::string withWords(const std::string& command, const Words& words);

/// Compares lines with patterns and takes new words from them; empty when all is as expected,
/// otherwise what differs.
std::string compareLines(const std::vector<std::string>& patterns,
                         const std::vector<std::string>& lines, Words& words);

}  // namespace cli_testing
