// The board lies in a shared anonymous mapping that parent and child inherit: a child that dies at
// any instruction leaves its notes there, since they are plain writes to memory that only the child
// changes.
#include "host/supervision/child_process.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>

#include "platform/base/work_death.h"

namespace supervision {

OdWorkBoard* makeSharedBoard() {
  void* memory =
      mmap(nullptr, sizeof(OdWorkBoard), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return memory == MAP_FAILED ? nullptr : new (memory) OdWorkBoard;
}

void releaseBoard(OdWorkBoard* board) {
  if (board != nullptr) munmap(board, sizeof(OdWorkBoard));
}

void enterChild(pid_t parent, OdWorkBoard* board) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(EXIT_FAILURE);  // the parent died before that
  odInstallWorkBoard(board);
  std::set_new_handler(&odNoteOutOfMemory);
}

int waitForChild(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace supervision
