// The system's operations on whole files.
#include "platform/storage/file_ops.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/base/new_file.h"

namespace {

/// Opens, syncs and closes; for files and folders alike.
int syncPath(const std::string& path, int flags) {
  const int fd = ::open(path.c_str(), flags | O_CLOEXEC);
  if (fd < 0) return errno;
  const int failure = ::fsync(fd) == 0 ? 0 : errno;
  ::close(fd);
  return failure;
}

}  // namespace

int OdPosixFileOps::inspect(const std::string& path, OdStoreFileInfo& info) {
  info = {};
  struct stat found = {};
  if (::stat(path.c_str(), &found) != 0) return errno == ENOENT ? 0 : errno;
  info.exists = true;
  info.isRegular = S_ISREG(found.st_mode);
  info.mode = found.st_mode & 07777U;
  info.owner = found.st_uid;
  info.group = found.st_gid;
  return 0;
}

int OdPosixFileOps::resolve(const std::string& path, std::string& resolved) {
  return odResolveForWriting(path, resolved);
}

int OdPosixFileOps::createExclusive(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (fd < 0) return errno;
  ::close(fd);
  return 0;
}

int OdPosixFileOps::applyAttributes(const std::string& path, const OdStoreFileInfo& info) {
  // Only a privileged user can hand a file to another one; without that right the group is tried
  // alone, and a file that stays ours is still a good save.
  if (::chown(path.c_str(), info.owner, info.group) != 0 &&
      ::chown(path.c_str(), static_cast<uid_t>(-1), info.group) != 0) {
    // The bits below must not give rights to a group they were not meant for.
    return ::chmod(path.c_str(), info.mode & 0707U) == 0 ? 0 : errno;
  }
  return ::chmod(path.c_str(), info.mode) == 0 ? 0 : errno;
}

int OdPosixFileOps::syncFile(const std::string& path) { return syncPath(path, O_RDONLY); }

int OdPosixFileOps::syncDirectory(const std::string& path) {
  return syncPath(path, O_RDONLY | O_DIRECTORY);
}

int OdPosixFileOps::rename(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int OdPosixFileOps::renameToFreeName(const std::string& from, const std::string& to) {
  return odRenameToFreeName(from, to);
}

int OdPosixFileOps::remove(const std::string& path) {
  return ::unlink(path.c_str()) == 0 ? 0 : errno;
}
