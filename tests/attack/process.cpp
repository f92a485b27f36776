#include "tests/attack/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>

#include "platform/base/non_copyable.h"

namespace attack {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::seconds(60);

struct Pipe : OdNonCopyable {
  Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    read = ends[0];
    write = ends[1];
  }
  ~Pipe() {
    closeEnd(read);
    closeEnd(write);
  }
  static void closeEnd(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }
  int read = -1;
  int write = -1;
};

[[noreturn]] void execute(const Command& command, const Pipe& input, const Pipe& output,
                          const Pipe& errors) {
  setpgid(0, 0);
  int out = output.write;
  if (!command.outputFile.empty()) out = open(command.outputFile.c_str(), O_WRONLY | O_CLOEXEC);
  dup2(input.read, STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(errors.write, STDERR_FILENO);
  if (chdir(command.folder.c_str()) != 0) _exit(126);
  std::vector<char*> words;
  for (const std::string& word : command.words) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  execv(words[0], words.data());
  _exit(127);
}

/// Feeds the input and collects both outputs until all are closed; false when that takes too long.
bool converse(const Command& command, Pipe& input, Pipe& output, Pipe& errors, Outcome& outcome) {
  const auto end = Clock::now() + kPatience;
  std::size_t fed = 0;
  std::array<char, 65536> buffer{};
  if (command.input.empty()) Pipe::closeEnd(input.write);
  while (output.read >= 0 || errors.read >= 0) {
    std::array<pollfd, 3> entries{pollfd{output.read, POLLIN, 0}, pollfd{errors.read, POLLIN, 0},
                                  pollfd{input.write, POLLOUT, 0}};
    if (Clock::now() > end) return false;
    if (poll(entries.data(), entries.size(), 100) < 0 && errno != EINTR) return false;
    const auto take = [&](pollfd& entry, int& channel, std::string& text) {
      if (entry.fd < 0 || entry.revents == 0) return;
      const ssize_t count = read(channel, buffer.data(), buffer.size());
      if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
      if (count <= 0) Pipe::closeEnd(channel);
    };
    take(entries[0], output.read, outcome.output);
    take(entries[1], errors.read, outcome.errors);
    if (entries[2].fd >= 0 && entries[2].revents != 0) {
      const std::size_t left = command.input.size() - fed;
      const ssize_t count =
          write(input.write, command.input.data() + fed, std::min<std::size_t>(left, 65536));
      if (count > 0) fed += static_cast<std::size_t>(count);
      if (count <= 0 || fed == command.input.size()) Pipe::closeEnd(input.write);
    }
  }
  return true;
}

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

}  // namespace

Outcome run(const Command& command) {
  Pipe input;
  Pipe output;
  Pipe errors;
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) execute(command, input, output, errors);
  Pipe::closeEnd(input.read);
  Pipe::closeEnd(output.write);
  Pipe::closeEnd(errors.write);
  if (command.closedOutput) Pipe::closeEnd(output.read);
  Outcome outcome;
  if (command.killAfterMicroseconds >= 0) {
    usleep(static_cast<useconds_t>(command.killAfterMicroseconds));
    kill(-child, SIGKILL);
    kill(child, SIGKILL);  // it may not have its group yet
  }
  outcome.isLate = !converse(command, input, output, errors, outcome);
  if (outcome.isLate) kill(-child, SIGKILL);
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  outcome.seconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
  outcome.megabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
  return outcome;
}

std::string textOf(const Command& command) {
  std::string text;
  for (const std::string& word : command.words) {
    const bool isPlain = word.find_first_not_of(
                             "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUV"
                             "WXYZ0123456789_./:=,-") == std::string::npos;
    text += (text.empty() ? "" : " ") + (isPlain ? word : "'" + word.substr(0, 200) + "'");
  }
  if (!command.outputFile.empty()) text += " > " + command.outputFile;
  if (command.closedOutput) text += " | true";
  if (command.killAfterMicroseconds >= 0) {
    text += "  (killed after " + std::to_string(command.killAfterMicroseconds) + " us)";
  }
  return text;
}

}  // namespace attack
