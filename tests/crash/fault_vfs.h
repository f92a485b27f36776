// A layer below the store that counts, records, fails or ends with every operation on a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/storage/file_ops.h"

namespace crashtest {

/// One operation that changes a file, a name, or what is on the disk.
struct FileEvent {
  enum class Kind { kCreate, kWrite, kTruncate, kSync, kRemove, kRename, kSyncFolder };
  Kind kind;
  std::string path;
  std::string to = {};       ///< kRename
  std::int64_t offset = 0;   ///< kWrite; the new size of kTruncate
  std::string data = {};     ///< kWrite
  bool syncsFolder = false;  ///< kSync, kRemove: the folder's names reach the disk as well
};

enum class FaultMode {
  kNone,
  kRecord,       ///< keep all events
  kKill,         ///< end the process in place of event `at`; half of a write is still done
  kFail,         ///< event `at` and all later ones fail as on a full disk; removing still works
  kFailFolders,  ///< syncing a folder fails, also the sync that is a part of another event
};

/// State of the layer. There is one, as the process has one list of VFSes.
struct FaultState {
  FaultMode mode = FaultMode::kNone;
  std::size_t at = 0;
  std::size_t count = 0;
  std::vector<FileEvent> events;

  void start(FaultMode newMode, std::size_t newAt = 0) { *this = {newMode, newAt, 0, {}}; }
};
FaultState& faultState();

/// Exit code of a process that was ended by kKill.
inline constexpr int kKilledExitCode = 77;

/// Registers the VFS once and returns its name.
const char* faultVfsName();

/// File operations through the same layer.
class FaultFileOps final : public OdPosixFileOps {
 public:
  int createExclusive(const std::string& path) override;
  int syncFile(const std::string& path) override;
  int syncDirectory(const std::string& path) override;
  int rename(const std::string& from, const std::string& to) override;
  int renameToFreeName(const std::string& from, const std::string& to) override;
  int remove(const std::string& path) override;
};

}  // namespace crashtest
