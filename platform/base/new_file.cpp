// Files that are written beside their place and put there whole.
//
// A temporary file is recognised by its name, and a living one by its lock. The lock (flock)
// belongs to the open file: the system drops it when the process ends, however it ends, and
// programs on one machine see it across containers, where process numbers would mislead. A cleaner
// removes a file only while it holds its lock, so the maker, who locks after creating, may find
// its file removed; it sees that by the number of names of the file and makes another one.
#include "platform/base/new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/base/work_note.h"

namespace {

constexpr std::string_view kEnding = ".tmp";
constexpr std::size_t kDigits = 16;
/// Longer names are cut in the temporary one, which then has at most NAME_MAX bytes.
constexpr std::size_t kKeptNameBytes = NAME_MAX - kDigits - kEnding.size() - 2;
constexpr int kMaxLinks = 40;
constexpr int kAttempts = 16;

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }
std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string prefixFor(const std::string& name) {
  return "." + name.substr(0, kKeptNameBytes) + ".";
}

bool isTemporaryFor(std::string_view prefix, std::string_view file) {
  return file.size() == prefix.size() + kDigits + kEnding.size() && file.starts_with(prefix) &&
         file.ends_with(kEnding) &&
         std::ranges::all_of(file.substr(prefix.size(), kDigits),
                             [](unsigned char c) { return std::isxdigit(c) != 0; });
}

int realPath(const std::string& path, std::string& resolved) {
  const std::unique_ptr<char, void (*)(void*)> found(::realpath(path.c_str(), nullptr), std::free);
  if (found == nullptr) return errno;
  resolved = found.get();
  return 0;
}

/// The text of a link; empty for what is none.
std::string linkAt(const std::string& path) {
  std::string text(PATH_MAX, '\0');
  const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
  text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return text;
}

void removeLeftover(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return;
  struct stat found = {};
  const bool isOurs =
      ::fstat(file, &found) == 0 && S_ISREG(found.st_mode) && found.st_uid == ::geteuid();
  if (isOurs && ::flock(file, LOCK_EX | LOCK_NB) == 0) ::unlink(path.c_str());
  ::close(file);
}

int syncFolder(const std::string& folder) {
  const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return errno;
  const int error = ::fsync(file) == 0 ? 0 : errno;
  ::close(file);
  return error;
}

/// Only a privileged user can hand a file to another one: without that right it stays ours, and
/// then a foreign group must not get rights that were meant for another.
int takeAttributes(int file, const struct stat& old) {
  const bool isGiven = ::fchown(file, old.st_uid, old.st_gid) == 0 ||
                       ::fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
  constexpr mode_t kWithoutGroup = 07707;
  const mode_t mode = old.st_mode & (isGiven ? 07777U : kWithoutGroup);
  return ::fchmod(file, mode) == 0 ? 0 : errno;
}

}  // namespace

// ---- Steps

int odResolveForWriting(const std::string& path, std::string& resolved) {
  std::string next = path;
  for (int links = 0; links <= kMaxLinks; ++links) {
    const int error = realPath(next, resolved);
    if (error != ENOENT) return error;
    const std::string name = nameOf(next);
    if (name.empty()) return EISDIR;
    const std::string folder = folderOf(next);
    if (const int folderError = realPath(folder.empty() ? "." : folder, resolved);
        folderError != 0) {
      return folderError;
    }
    if (resolved.back() != '/') resolved += '/';
    const std::string link = linkAt(resolved + name);
    if (link.empty()) {
      resolved += name;
      return 0;
    }
    next = link.front() == '/' ? link : resolved + link;
  }
  return ELOOP;
}

std::string odTemporaryName(const std::string& name) {
  std::random_device device;
  const std::uint64_t bits = (std::uint64_t{device()} << 32U) | device();
  char digits[kDigits + 1];
  std::snprintf(digits, sizeof digits, "%016" PRIx64, bits);
  return prefixFor(name) + digits + std::string(kEnding);
}

int odHoldTemporary(const std::string& path, int& hold) {
  hold = ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
  if (hold < 0) return errno;
  // File systems without locks have no leftovers removed either.
  while (::flock(hold, LOCK_EX) != 0 && errno == EINTR) {
  }
  struct stat found = {};
  if (::fstat(hold, &found) == 0 && found.st_nlink > 0) return 0;
  ::close(std::exchange(hold, -1));
  return ENOENT;
}

void odRemoveLeftovers(const std::string& folder, const std::string& name) {
  const std::string prefix = prefixFor(name);
  std::error_code failure;
  for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    if (isTemporaryFor(prefix, entry->path().filename().native())) {
      removeLeftover(entry->path().native());
    }
  }
}

int odRenameToFreeName(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // The file system cannot do it in one step: a second name, then without the first one.
  if (::link(from.c_str(), to.c_str()) != 0) return errno;
  return ::unlink(from.c_str()) == 0 ? 0 : errno;
}

// ---- OdNameClaim
//
// A claim is the address of a socket in the system's abstract names, made of the folder's identity
// and the name. One socket has an address at a time, and the system takes it back when the process
// ends, however it ends. A file beside the place would stay there after a crash.

OdNameClaim::~OdNameClaim() {
  if (m_hold >= 0) ::close(m_hold);
}

OdNameClaim::OdNameClaim(OdNameClaim&& other) noexcept
    : m_path(std::move(other.m_path)), m_hold(std::exchange(other.m_hold, -1)) {}

int OdNameClaim::take() {
  std::string target;
  if (const int error = odResolveForWriting(m_path, target); error != 0) return error;
  struct stat folder = {};
  if (::stat(folderOf(target).c_str(), &folder) != 0) return errno;
  if (::access(folderOf(target).c_str(), W_OK) != 0) return errno;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;  // a first byte of 0 makes the name an abstract one
  const int length = std::snprintf(
      address.sun_path + 1, sizeof address.sun_path - 1, "vdm-output-%jx-%jx-%zx",
      static_cast<std::uintmax_t>(folder.st_dev), static_cast<std::uintmax_t>(folder.st_ino),
      std::hash<std::string>()(nameOf(target)));
  const int made = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (made < 0) return 0;  // a system without such sockets knows no claims
  const auto size =
      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1) + static_cast<socklen_t>(length);
  if (::bind(made, reinterpret_cast<const sockaddr*>(&address), size) == 0) {
    m_hold = made;
    return 0;
  }
  const int error = errno;
  ::close(made);
  return error == EADDRINUSE ? error : 0;
}

// ---- OdNewFile

OdNewFile::OdNewFile(std::string path) : m_path(std::move(path)) {}

OdNewFile::~OdNewFile() {
  if (!m_temporary.empty()) ::unlink(m_temporary.c_str());
  if (m_hold >= 0) ::close(m_hold);
}

OdStatus OdNewFile::failed(int error, const char* doing) const {
  const bool isFull = error == ENOSPC || error == EDQUOT || error == EFBIG;
  const OdResult code = isFull ? eDiskFull : eFileWriteError;
  return {code, OdString("'" + m_path + "': " + doing +
                         " failed: " + std::generic_category().message(error))};
}

OdStatus OdNewFile::create() {
  if (const int error = odResolveForWriting(m_path, m_target); error != 0) {
    return failed(error, "finding the file");
  }
  struct stat old = {};
  m_replaces = ::stat(m_target.c_str(), &old) == 0;
  if (m_replaces && !S_ISREG(old.st_mode)) {
    return {eFileAccess, OdString("'" + m_path + "' is not a regular file and is not replaced")};
  }
  const std::string folder = folderOf(m_target);
  odRemoveLeftovers(folder, nameOf(m_target));
  int error = EEXIST;
  for (int attempt = 0; attempt < kAttempts && (error == EEXIST || error == ENOENT); ++attempt) {
    const std::string path = folder + odTemporaryName(nameOf(m_target));
    const int made = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    error = made < 0 ? errno : 0;
    if (error != 0) continue;
    m_temporary = path;
    error = odHoldTemporary(path, m_hold);
    ::close(made);
    if (error == ENOENT) m_temporary.clear();
  }
  if (error == 0 && m_replaces) error = takeAttributes(m_hold, old);
  return error == 0 ? OdStatus{} : failed(error, "creating a file in its folder");
}

OdStatus OdNewFile::write(const void* bytes, std::size_t size) {
  const char* at = static_cast<const char*>(bytes);
  const char* const end = at + size;
  while (at != end) {
    const ssize_t count = ::write(m_hold, at, static_cast<std::size_t>(end - at));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return failed(errno, "writing");
    at += count;
  }
  return {};
}

OdStatus OdNewFile::commit() {
  if (::fsync(m_hold) != 0) return failed(errno, "writing the file to disk");
  const int error = m_replaces ? (::rename(m_temporary.c_str(), m_target.c_str()) == 0 ? 0 : errno)
                               : odRenameToFreeName(m_temporary, m_target);
  if (error == EEXIST) {
    return {eFileChanged, OdString("'" + m_path + "' was made by another program meanwhile")};
  }
  if (error != 0) return failed(error, "putting the file in its place");
  m_temporary.clear();
  odNoteFileWritten();
  const int unsynced = syncFolder(folderOf(m_target));
  return unsynced == 0 ? OdStatus{}
                       : failed(unsynced, "the file is written, but writing its folder to disk");
}
