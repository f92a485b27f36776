// Operations on whole files that saving a drawing needs beside SQLite, as a seam for tests.
#pragma once

#include <string>

/// What is known of a path.
struct OdStoreFileInfo {
  bool exists = false;
  bool isRegular = false;
  unsigned mode = 0;   ///< permission bits
  unsigned owner = 0;  ///< user id
  unsigned group = 0;  ///< group id
};

/// Operations on whole files. Paths are UTF-8. Each returns 0 or an errno value; nothing throws.
/// Implementations are stateless or guard their state: stores of several threads may share one.
class OdStoreFileOps {
 public:
  virtual ~OdStoreFileOps() = default;

  /// A missing path is not an error: `info.exists` is false then.
  virtual int inspect(const std::string& path, OdStoreFileInfo& info) = 0;
  /// Absolute path with all symbolic links followed; the last part may be absent.
  virtual int resolve(const std::string& path, std::string& resolved) = 0;
  /// Creates an empty file; EEXIST when the name is taken.
  virtual int createExclusive(const std::string& path) = 0;
  /// Gives `path` the permission bits of `info`, and its owner where the system lets us.
  virtual int applyAttributes(const std::string& path, const OdStoreFileInfo& info) = 0;
  /// Returns once content and size of the file are on the disk.
  virtual int syncFile(const std::string& path) = 0;
  /// Returns once the names in the folder are on the disk.
  virtual int syncDirectory(const std::string& path) = 0;
  /// Atomically gives `from` the name `to`, which may exist.
  virtual int rename(const std::string& from, const std::string& to) = 0;
  /// The same, but `to` must be free: EEXIST.
  virtual int renameToFreeName(const std::string& from, const std::string& to) = 0;
  virtual int remove(const std::string& path) = 0;
};

/// The system's file operations.
class OdPosixFileOps : public OdStoreFileOps {
 public:
  int inspect(const std::string& path, OdStoreFileInfo& info) override;
  int resolve(const std::string& path, std::string& resolved) override;
  int createExclusive(const std::string& path) override;
  int applyAttributes(const std::string& path, const OdStoreFileInfo& info) override;
  int syncFile(const std::string& path) override;
  int syncDirectory(const std::string& path) override;
  int rename(const std::string& from, const std::string& to) override;
  int renameToFreeName(const std::string& from, const std::string& to) override;
  int remove(const std::string& path) override;
};
