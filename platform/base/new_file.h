// Files that are written beside their place and put there whole.
#pragma once

#include <string>
#include <utility>

#include "platform/base/export.h"
#include "platform/base/non_copyable.h"
#include "platform/base/status.h"

/// A file under a temporary name in the folder of its place. Until commit() whatever lies at the
/// place stays as it was; the destructor removes a file that did not take its place. Paths are
/// UTF-8. One thread.
///
/// A process that is killed leaves its temporary file. The next one that writes to the same place
/// removes it: a temporary file that somebody still writes is locked (flock), a leftover is not.
class OD_API OdNewFile : OdNonCopyable {
 public:
  /// Symbolic links of `path` are followed: the file that they lead to is replaced, they stay.
  explicit OdNewFile(std::string path);
  ~OdNewFile();

  /// Creates the empty temporary file with the permissions of the file that it will replace, and
  /// removes leftovers. Folders, devices and pipes are not replaced: eFileAccess. Other failures
  /// are eDiskFull or eFileWriteError; all name the path.
  OdStatus create();
  /// Where the content goes; the file at this path may be opened, truncated and closed, but not
  /// replaced.
  [[nodiscard]] const std::string& temporary() const { return m_temporary; }
  /// Appends to the file. eDiskFull, eFileWriteError.
  OdStatus write(const void* bytes, std::size_t size);
  /// Syncs the file and puts it in its place. eFileChanged when nothing lay there at create() and
  /// something does now: of two programs that make one new file the first one wins. A failure to
  /// sync the folder comes after the file is in its place, and its text says so.
  OdStatus commit();

 private:
  OdStatus failed(int error, const char* doing) const;

  std::string m_path;       // as given, for messages
  std::string m_target;     // absolute, without links
  std::string m_temporary;  // empty while there is none
  int m_hold = -1;          // the open, locked temporary file
  bool m_replaces = false;
};

/// The right to make the file at a path, for programs that first find out what lies there and write
/// it much later: programs that ask for it in between are refused. Others are not: they meet
/// OdNewFile::commit(). Ends with the object or its process, and leaves nothing in the folder.
class OD_API OdNameClaim {
 public:
  explicit OdNameClaim(std::string path) : m_path(std::move(path)) {}
  ~OdNameClaim();
  OdNameClaim(OdNameClaim&& other) noexcept;
  OdNameClaim& operator=(OdNameClaim&&) = delete;

  /// 0 or an errno value: EADDRINUSE when another object or program has the right.
  int take();

 private:
  std::string m_path;
  int m_hold = -1;  // a bound socket; -1 while the right is not ours
};

// The steps of it, for those who write files their own way. Each returns 0 or an errno value.

/// Absolute path with all symbolic links followed, also those that lead to nothing yet; the last
/// part may be absent. ELOOP, ENOENT for a missing folder.
OD_API int odResolveForWriting(const std::string& path, std::string& resolved);
/// ".<name>.<16 random hexadecimal digits>.tmp", at most 255 bytes.
[[nodiscard]] OD_API std::string odTemporaryName(const std::string& name);
/// Opens and locks the temporary file, so that no other run takes it for a leftover. Closing `hold`
/// ends that. ENOENT when it was taken for one before the lock was there: the caller makes another
/// one.
OD_API int odHoldTemporary(const std::string& path, int& hold);
/// Removes the temporary files for `name` that no process holds.
OD_API void odRemoveLeftovers(const std::string& folder, const std::string& name);
/// Gives `from` the name `to`, which must be free: EEXIST.
OD_API int odRenameToFreeName(const std::string& from, const std::string& to);
