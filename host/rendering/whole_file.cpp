// Files that are written whole or not at all.
#include "host/rendering/whole_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "platform/base/work_note.h"

namespace rendering {

namespace {

bool writeAll(int file, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::write(file, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return ::fsync(file) == 0;
}

std::string failure(const std::string& path, int reason) {
  return "'" + path + "': " + std::generic_category().message(reason);
}

}  // namespace

std::string writeWholeFile(const std::string& path, const std::string& bytes) {
  std::string beside = path + ".XXXXXX";
  const int file = ::mkstemp(beside.data());
  if (file < 0) return failure(path, errno);
  constexpr mode_t kUsual = 0666;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  bool done = ::fchmod(file, kUsual & ~mask) == 0 && writeAll(file, bytes);
  int reason = errno;
  if (::close(file) != 0 && done) {
    done = false;
    reason = errno;
  }
  if (done && std::rename(beside.c_str(), path.c_str()) == 0) {
    odNoteFileWritten();
    return {};
  }
  if (done) reason = errno;
  ::unlink(beside.c_str());
  return failure(path, reason);
}

}  // namespace rendering
