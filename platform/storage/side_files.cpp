// The files beside a drawing that SQLite would take for a part of its state.
#include "platform/storage/side_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>

#include "platform/base/non_copyable.h"
#include "platform/storage/bytes.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

/// End of a journal that names a super-journal, after SQLite's published file format: the name, its
/// length, its checksum (4 bytes each, big-endian) and the magic of a journal.
constexpr std::array<std::uint8_t, 8> kJournalMagic = {0xd9, 0xd5, 0x05, 0xf9,
                                                       0x20, 0xa1, 0x63, 0xd7};
constexpr std::size_t kTrailerBytes = 16;
/// What a message shows of the name.
constexpr std::size_t kShownNameBytes = 200;

class OpenFile : OdNonCopyable {
 public:
  /// Links are not followed, and a pipe does not make the program wait.
  explicit OpenFile(const std::string& path)
      : m_fd(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)) {}
  ~OpenFile() {
    if (m_fd >= 0) ::close(m_fd);
  }

  [[nodiscard]] bool isOpen() const { return m_fd >= 0; }
  [[nodiscard]] bool read(void* target, std::size_t size, off_t offset) const {
    return ::pread(m_fd, target, size, offset) == static_cast<ssize_t>(size);
  }

 private:
  int m_fd;
};

OdStatus refuse(const std::string& path, std::string_view why) {
  return failure(eCorruptData, path, why);
}

/// The checksum of the name is not compared: nothing honest ends like this, and the fewer
/// conditions there are, the less a difference from SQLite's own reading matters.
OdStatus checkJournal(const std::string& path, off_t size) {
  if (size < static_cast<off_t>(kTrailerBytes)) return {};
  const OpenFile journal(path);
  if (!journal.isOpen()) return systemFailure(errno, path, "looking at the journal");
  std::array<std::uint8_t, kTrailerBytes> trailer = {};
  const off_t trailerAt = size - static_cast<off_t>(kTrailerBytes);
  if (!journal.read(trailer.data(), trailer.size(), trailerAt)) {
    return systemFailure(errno, path, "looking at the journal");
  }
  if (!std::equal(kJournalMagic.begin(), kJournalMagic.end(), trailer.begin() + 8)) return {};
  const auto length = static_cast<off_t>(bigEndian(trailer.data(), 4));
  if (length == 0 || length > trailerAt) return {};
  std::string name(std::min(static_cast<std::size_t>(length), kShownNameBytes), '\0');
  if (!journal.read(name.data(), name.size(), trailerAt - length)) name = "?";
  return refuse(path, "the journal names the super-journal \"" + name +
                          "\", which undoing the interrupted save would delete; no save of a "
                          "drawing leaves such a journal");
}

}  // namespace

OdStatus checkSideFiles(const std::string& path) {
  struct stat found = {};
  const std::string log = path + "-wal";
  if (::lstat(log.c_str(), &found) == 0) {
    return refuse(log,
                  "a write-ahead log lies beside the drawing; no save of a drawing leaves one");
  }
  const std::string journal = path + "-journal";
  if (::lstat(journal.c_str(), &found) != 0) {
    return errno == ENOENT ? OdStatus{} : systemFailure(errno, journal, "looking at the journal");
  }
  if (!S_ISREG(found.st_mode)) return refuse(journal, "the journal is not a regular file");
  return checkJournal(journal, found.st_size);
}

}  // namespace odstorage
