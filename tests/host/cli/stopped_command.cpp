// A command that is stopped on its way, while others work on the same drawing.
#include "tests/host/cli/stopped_command.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>

#include "tests/support/test_folder.h"

namespace cli_testing {

StoppedCommand::StoppedCommand(const Shell& shell, std::string line)
    : m_folder(shell.folder()), m_line(std::move(line)) {}

bool StoppedCommand::start(std::size_t at) {
  const std::string base = m_folder.string();
  const std::string line = "cd '" + base + "' && exec vdm " + m_line + " > '" + base +
                           ".answer' 2> '" + base + ".errors'";
  m_process = ::fork();
  if (m_process == 0) {
    ::setenv("LD_PRELOAD", VDM_STOP_BETWEEN_READS, 1);
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    ::setenv("VDM_TEST_STOP_FILE", "a.vdm", 1);
    ::setenv("VDM_TEST_STOP_AT", std::to_string(at).c_str(), 1);
    ::setenv("VDM_UNSUPERVISED", "1", 1);  // a stop of the child's child would not be seen
    ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    ::_exit(127);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(m_process, &status, WUNTRACED), m_process);
  m_isStopped = WIFSTOPPED(status);
  if (!m_isStopped) take(status);
  return m_isStopped;
}

int StoppedCommand::finish() {
  if (std::exchange(m_isStopped, false)) {
    int status = 0;
    ::kill(m_process, SIGCONT);
    EXPECT_EQ(::waitpid(m_process, &status, 0), m_process);
    take(status);
  }
  return m_exitCode;
}

void StoppedCommand::take(int status) { m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

std::string StoppedCommand::output() const { return readBytes(m_folder.string() + ".answer"); }

std::string StoppedCommand::errors() const { return readBytes(m_folder.string() + ".errors"); }

}  // namespace cli_testing
