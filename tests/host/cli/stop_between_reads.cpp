// Loaded before the system's library into a command: stops the process before a chosen step.
//
// VDM_TEST_STOP_FILE is the name of a file, VDM_TEST_STOP_AT the number of a step, from 1 on: a
// read of the file or a change of a lock on it. Reading commands can so be held between any two
// reads, also where they hold no lock, while another process saves.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool isWatched(int file) {
  static const char* const kName = std::getenv("VDM_TEST_STOP_FILE");
  if (kName == nullptr) return false;
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const ssize_t size = ::readlink(link.c_str(), path, sizeof path - 1);
  if (size < 0) return false;
  path[size] = '\0';
  const char* const slash = std::strrchr(path, '/');
  return slash != nullptr && std::strcmp(slash + 1, kName) == 0;
}

void beforeStep(int file) {
  static const char* const kAt = std::getenv("VDM_TEST_STOP_AT");
  static long count = 0;
  if (kAt != nullptr && isWatched(file) && ++count == std::atol(kAt)) std::raise(SIGSTOP);
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ssize_t read(int file, void* target, size_t size) {
  beforeStep(file);
  return ::syscall(SYS_read, file, target, size);
}
__attribute__((visibility("default"))) ssize_t pread(int file, void* target, size_t size,
                                                     off_t offset) {
  beforeStep(file);
  return ::syscall(SYS_pread64, file, target, size, offset);
}
__attribute__((visibility("default"))) ssize_t pread64(int file, void* target, size_t size,
                                                       off64_t offset) {
  beforeStep(file);
  return ::syscall(SYS_pread64, file, target, size, offset);
}
/// All arguments of the calls that matter here fit a pointer.
__attribute__((visibility("default"))) int fcntl64(int file, int command, ...) {
  va_list rest;
  va_start(rest, command);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  if (command == F_SETLK) beforeStep(file);
  return static_cast<int>(::syscall(SYS_fcntl, file, command, argument));
}
__attribute__((visibility("default"))) int fcntl(int file, int command, ...) {
  va_list rest;
  va_start(rest, command);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  return fcntl64(file, command, argument);
}
}
