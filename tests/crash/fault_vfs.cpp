// A layer below the store that counts, records, fails or ends with every operation on a file.
#include "tests/crash/fault_vfs.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

namespace crashtest {

void FaultState::start(FaultMode newMode, std::size_t newAt) {
  mode = newMode;
  at = newAt;
  count = 0;
  events.clear();
}

FaultState& faultState() {
  static FaultState state;
  return state;
}

namespace {

enum class Verdict { kPerform, kFail, kTearAndEnd };

/// Counts the event and says what becomes of it.
Verdict judge(FileEvent event) {
  FaultState& state = faultState();
  const std::size_t index = state.count++;
  switch (state.mode) {
    case FaultMode::kNone:
      break;
    case FaultMode::kRecord:
      state.events.push_back(std::move(event));
      break;
    case FaultMode::kKill:
      if (index < state.at) break;
      if (event.kind == FileEvent::Kind::kWrite) return Verdict::kTearAndEnd;
      ::_exit(kKilledExitCode);
    case FaultMode::kFail:
      if (index >= state.at && event.kind != FileEvent::Kind::kRemove) return Verdict::kFail;
      break;
  }
  return Verdict::kPerform;
}

// --- Files below SQLite --------------------------------------------------------------------------

struct FaultFile {
  sqlite3_file base;
  std::string* path;
  bool isNewJournal;  ///< its first sync also syncs the folder, as the system's VFS does it
  [[nodiscard]] sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

FaultFile* faultFile(sqlite3_file* file) { return reinterpret_cast<FaultFile*>(file); }
sqlite3_file* realFile(sqlite3_file* file) { return faultFile(file)->real(); }
const sqlite3_io_methods& realMethods(sqlite3_file* file) { return *realFile(file)->pMethods; }

int closeFile(sqlite3_file* file) {
  const int code = realMethods(file).xClose(realFile(file));
  delete faultFile(file)->path;
  return code;
}

int readFile(sqlite3_file* file, void* target, int size, sqlite3_int64 offset) {
  return realMethods(file).xRead(realFile(file), target, size, offset);
}

int writeFile(sqlite3_file* file, const void* source, int size, sqlite3_int64 offset) {
  FileEvent event{FileEvent::Kind::kWrite, *faultFile(file)->path};
  event.offset = offset;
  if (faultState().mode == FaultMode::kRecord) {
    event.data.assign(static_cast<const char*>(source), static_cast<std::size_t>(size));
  }
  const Verdict verdict = judge(std::move(event));
  if (verdict == Verdict::kFail) return SQLITE_FULL;
  if (verdict == Verdict::kTearAndEnd) {
    realMethods(file).xWrite(realFile(file), source, size / 2, offset);
    ::_exit(kKilledExitCode);
  }
  return realMethods(file).xWrite(realFile(file), source, size, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  FileEvent event{FileEvent::Kind::kTruncate, *faultFile(file)->path};
  event.offset = size;
  if (judge(std::move(event)) == Verdict::kFail) return SQLITE_IOERR_TRUNCATE;
  return realMethods(file).xTruncate(realFile(file), size);
}

int syncFile(sqlite3_file* file, int flags) {
  FileEvent event{FileEvent::Kind::kSync, *faultFile(file)->path};
  event.syncsFolder = std::exchange(faultFile(file)->isNewJournal, false);
  if (judge(std::move(event)) == Verdict::kFail) return SQLITE_IOERR_FSYNC;
  return realMethods(file).xSync(realFile(file), flags);
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
  return realMethods(file).xFileSize(realFile(file), size);
}
int lockFile(sqlite3_file* file, int level) {
  return realMethods(file).xLock(realFile(file), level);
}
int unlockFile(sqlite3_file* file, int level) {
  return realMethods(file).xUnlock(realFile(file), level);
}
int checkReservedLock(sqlite3_file* file, int* isReserved) {
  return realMethods(file).xCheckReservedLock(realFile(file), isReserved);
}
int fileControl(sqlite3_file* file, int operation, void* argument) {
  return realMethods(file).xFileControl(realFile(file), operation, argument);
}
int sectorSize(sqlite3_file* file) { return realMethods(file).xSectorSize(realFile(file)); }
int deviceCharacteristics(sqlite3_file* file) {
  return realMethods(file).xDeviceCharacteristics(realFile(file));
}

const sqlite3_io_methods& faultMethods() {
  static const sqlite3_io_methods methods = [] {
    sqlite3_io_methods made = {};
    made.iVersion = 1;
    made.xClose = closeFile;
    made.xRead = readFile;
    made.xWrite = writeFile;
    made.xTruncate = truncateFile;
    made.xSync = syncFile;
    made.xFileSize = fileSize;
    made.xLock = lockFile;
    made.xUnlock = unlockFile;
    made.xCheckReservedLock = checkReservedLock;
    made.xFileControl = fileControl;
    made.xSectorSize = sectorSize;
    made.xDeviceCharacteristics = deviceCharacteristics;
    return made;
  }();
  return methods;
}

sqlite3_vfs* realVfs() { return sqlite3_vfs_find(nullptr); }

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  int exists = 0;
  if (name != nullptr) realVfs()->xAccess(realVfs(), name, SQLITE_ACCESS_EXISTS, &exists);
  const bool isCreated = name != nullptr && exists == 0 && (flags & SQLITE_OPEN_CREATE) != 0;
  if (isCreated && judge({FileEvent::Kind::kCreate, name}) == Verdict::kFail) {
    return SQLITE_CANTOPEN;
  }
  const int code = realVfs()->xOpen(realVfs(), name, realFile(file), flags, outFlags);
  if (code != SQLITE_OK) return code;
  faultFile(file)->path = new std::string(name != nullptr ? name : "");
  faultFile(file)->isNewJournal = isCreated && (flags & SQLITE_OPEN_MAIN_JOURNAL) != 0;
  file->pMethods = &faultMethods();
  return SQLITE_OK;
}

int deleteFile(sqlite3_vfs*, const char* name, int syncFolder) {
  FileEvent event{FileEvent::Kind::kRemove, name};
  event.syncsFolder = syncFolder != 0;
  judge(std::move(event));
  return realVfs()->xDelete(realVfs(), name, syncFolder);
}

}  // namespace

const char* faultVfsName() {
  static sqlite3_vfs vfs = [] {
    sqlite3_vfs made = *realVfs();
    made.szOsFile += static_cast<int>(sizeof(FaultFile));
    made.zName = "faults";
    made.pNext = nullptr;
    made.xOpen = openFile;
    made.xDelete = deleteFile;
    return made;
  }();
  static const int registered = sqlite3_vfs_register(&vfs, /*makeDflt=*/0);
  return registered == SQLITE_OK ? vfs.zName : nullptr;
}

// --- Whole files ---------------------------------------------------------------------------------

int FaultFileOps::createExclusive(const std::string& path) {
  if (judge({FileEvent::Kind::kCreate, path}) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::createExclusive(path);
}

int FaultFileOps::syncFile(const std::string& path) {
  if (judge({FileEvent::Kind::kSync, path}) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::syncFile(path);
}

int FaultFileOps::syncDirectory(const std::string& path) {
  if (judge({FileEvent::Kind::kSyncFolder, path}) == Verdict::kFail) return EIO;
  return OdPosixFileOps::syncDirectory(path);
}

int FaultFileOps::rename(const std::string& from, const std::string& to) {
  FileEvent event{FileEvent::Kind::kRename, from};
  event.to = to;
  if (judge(std::move(event)) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::rename(from, to);
}

int FaultFileOps::remove(const std::string& path) {
  judge({FileEvent::Kind::kRemove, path});
  return OdPosixFileOps::remove(path);
}

}  // namespace crashtest
