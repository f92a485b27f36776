// A layer below the store that counts, records, fails or ends with every operation on a file.
#include "tests/crash/fault_vfs.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace crashtest {

FaultState& faultState() {
  static FaultState state;
  return state;
}

namespace {

using Kind = FileEvent::Kind;
enum class Verdict { kPerform, kFail, kTearAndEnd };

/// Counts the event and says what becomes of it.
Verdict judge(FileEvent event) {
  FaultState& state = faultState();
  const std::size_t index = state.count++;
  const bool isDue = index >= state.at;
  if (state.mode == FaultMode::kFailFolders && event.kind == Kind::kSyncFolder) {
    return Verdict::kFail;
  }
  if (state.mode == FaultMode::kFail && isDue && event.kind != Kind::kRemove) return Verdict::kFail;
  if (state.mode == FaultMode::kKill && isDue) {
    if (event.kind == Kind::kWrite) return Verdict::kTearAndEnd;
    ::_exit(kKilledExitCode);
  }
  if (state.mode == FaultMode::kRecord) state.events.push_back(std::move(event));
  return Verdict::kPerform;
}

// ---- Files below SQLite

struct FaultFile {
  sqlite3_file base;
  std::string* path;
  bool isNewJournal;  ///< its first sync also syncs the folder, as the system's VFS does it
};

FaultFile* faultFile(sqlite3_file* file) { return reinterpret_cast<FaultFile*>(file); }
/// The system's file, after this layer's part in memory.
sqlite3_file* realFile(sqlite3_file* file) {
  return reinterpret_cast<sqlite3_file*>(faultFile(file) + 1);
}
const sqlite3_io_methods& realMethods(sqlite3_file* file) { return *realFile(file)->pMethods; }

int closeFile(sqlite3_file* file) {
  delete faultFile(file)->path;
  return realMethods(file).xClose(realFile(file));
}

/// A method of the system's file, under its own name.
template <auto kMethod>
struct PassOn;
template <class... Args, int (*sqlite3_io_methods::*kMethod)(sqlite3_file*, Args...)>
struct PassOn<kMethod> {
  static int call(sqlite3_file* file, Args... args) {
    return (realMethods(file).*kMethod)(realFile(file), args...);
  }
};
template <auto... kMethods>
void passOn(sqlite3_io_methods& methods) {
  ((methods.*kMethods = PassOn<kMethods>::call), ...);
}

int writeFile(sqlite3_file* file, const void* source, int size, sqlite3_int64 offset) {
  FileEvent event{.kind = Kind::kWrite, .path = *faultFile(file)->path, .offset = offset};
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
  const Verdict verdict =
      judge({.kind = Kind::kTruncate, .path = *faultFile(file)->path, .offset = size});
  if (verdict == Verdict::kFail) return SQLITE_IOERR_TRUNCATE;
  return realMethods(file).xTruncate(realFile(file), size);
}

int syncFile(sqlite3_file* file, int flags) {
  const bool syncsFolder = std::exchange(faultFile(file)->isNewJournal, false);
  const Verdict verdict =
      judge({.kind = Kind::kSync, .path = *faultFile(file)->path, .syncsFolder = syncsFolder});
  if (verdict == Verdict::kFail) return SQLITE_IOERR_FSYNC;
  return realMethods(file).xSync(realFile(file), flags);
}

const sqlite3_io_methods& faultMethods() {
  using M = sqlite3_io_methods;
  static const M methods = [] {
    M made = {};
    made.iVersion = 1;
    passOn<&M::xRead, &M::xFileSize, &M::xLock, &M::xUnlock, &M::xCheckReservedLock,
           &M::xFileControl, &M::xSectorSize, &M::xDeviceCharacteristics>(made);
    made.xClose = closeFile;
    made.xWrite = writeFile;
    made.xTruncate = truncateFile;
    made.xSync = syncFile;
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
  if (isCreated && judge({Kind::kCreate, name}) == Verdict::kFail) return SQLITE_CANTOPEN;
  const int code = realVfs()->xOpen(realVfs(), name, realFile(file), flags, outFlags);
  if (code != SQLITE_OK) return code;
  faultFile(file)->path = new std::string(name != nullptr ? name : "");
  faultFile(file)->isNewJournal = isCreated && (flags & SQLITE_OPEN_MAIN_JOURNAL) != 0;
  file->pMethods = &faultMethods();
  return SQLITE_OK;
}

int deleteFile(sqlite3_vfs*, const char* name, int syncFolder) {
  judge({.kind = Kind::kRemove, .path = name, .syncsFolder = syncFolder != 0});
  const int code = realVfs()->xDelete(realVfs(), name, syncFolder);
  const bool fails = syncFolder != 0 && faultState().mode == FaultMode::kFailFolders;
  return code == SQLITE_OK && fails ? SQLITE_IOERR_DIR_FSYNC : code;
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

// ---- Whole files

int FaultFileOps::createExclusive(const std::string& path) {
  if (judge({Kind::kCreate, path}) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::createExclusive(path);
}

int FaultFileOps::syncFile(const std::string& path) {
  if (judge({Kind::kSync, path}) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::syncFile(path);
}

int FaultFileOps::syncDirectory(const std::string& path) {
  if (judge({Kind::kSyncFolder, path}) == Verdict::kFail) return EIO;
  return OdPosixFileOps::syncDirectory(path);
}

int FaultFileOps::rename(const std::string& from, const std::string& to) {
  if (judge({.kind = Kind::kRename, .path = from, .to = to}) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::rename(from, to);
}

int FaultFileOps::renameToFreeName(const std::string& from, const std::string& to) {
  if (judge({.kind = Kind::kRename, .path = from, .to = to}) == Verdict::kFail) return ENOSPC;
  return OdPosixFileOps::renameToFreeName(from, to);
}

int FaultFileOps::remove(const std::string& path) {
  judge({Kind::kRemove, path});
  return OdPosixFileOps::remove(path);
}

}  // namespace crashtest
