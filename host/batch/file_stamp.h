// What a file holds, and whether it still does.
#pragma once

#include <cstdint>
#include <string>

#include "platform/base/status.h"

namespace batch {

/// The content of a file as a text, and what the file system says about the file.
struct FileStamp {
  std::string content;  ///< "2f0c...-20480": digest and size; the same for the same bytes
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t changed = 0;  ///< nanoseconds

  /// Whether the file at the path is this one, unchanged, without reading it. A file that others
  /// hold open may be asked: it is not opened.
  [[nodiscard]] bool isUnchanged(const std::string& path) const;
};

/// Reads the whole file. To be called before this process opens it otherwise: closing a file ends
/// the locks that the process has on it. eFileAccess, or eFileChanged when it was
/// written meanwhile.
[[nodiscard]] OdStatus stampFile(const std::string& path, FileStamp& stamp);

}  // namespace batch
