// A fresh file that takes a drawing's place.
//
// The order of the steps is what makes a replacement safe at any moment of a kill or power loss:
//   1. the whole content is written to a temporary file, which nothing reads under its name;
//   2. the content is synced: after a renaming without it, a power loss could leave an empty file
//      under the drawing's name;
//   3. an interrupted save of the old file is undone and its side files are removed: SQLite would
//      apply an old journal to the new file;
//   4. rename, which is atomic: the name leads to the old file or to the new one;
//   5. the folder is synced: from here on a power loss cannot bring the old file back.
// The old file stays locked from step 3 to 4, so that no other program saves in between.
#include "platform/storage/file_replacement.h"

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/base/new_file.h"
#include "platform/base/work_note.h"
#include "platform/storage/file_header.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

constexpr int kNameAttempts = 16;

/// Files that SQLite would take for a part of the target's state.
constexpr const char* kSideFileSuffixes[] = {"-journal", "-wal", "-shm"};

/// Of two programs that make one new file the first one wins.
OdStatus madeMeanwhile(std::string_view target) {
  return failure(eFileChanged, target, "another program made the file meanwhile");
}

/// Only a database with a rollback journal can be locked and can have an interrupted save.
bool usesRollbackJournal(const Connection& connection) {
  FileHeader header = {};
  if (connection.readFile(header.data(), header.size(), 0) != SQLITE_OK) return false;
  int version = 0;
  const OdStatus status = identify(header, connection.path(), version);
  return status.code != eNotADrawing && header[18] == 1 && header[19] == 1;
}

}  // namespace

FileReplacement::FileReplacement(std::shared_ptr<const StoreEnvironment> environment,
                                 std::string target)
    : m_environment(std::move(environment)),
      m_target(std::move(target)),
      m_folder(m_target.substr(0, m_target.rfind('/') + 1)) {}

FileReplacement::~FileReplacement() { discard(); }

OdStatus FileReplacement::create(TargetLock lock) {
  OdStoreFileInfo info;
  OdStatus status = inspectTarget(info);
  if (status.ok() && info.exists && lock == TargetLock::kTake) {
    Connection probe;
    status = lockTarget(probe);
  }
  if (!status.ok()) return status;

  m_replaces = info.exists;
  odRemoveLeftovers(m_folder, m_target.substr(m_folder.size()));
  return createTemporary(info);
}

OdStatus FileReplacement::createTemporary(const OdStoreFileInfo& info) {
  const std::string name = m_target.substr(m_folder.size());
  int error = EEXIST;
  for (int attempt = 0; attempt < kNameAttempts && (error == EEXIST || error == ENOENT);
       ++attempt) {
    const std::string path = m_folder + odTemporaryName(name);
    error = fileOps().createExclusive(path);
    if (error != 0) continue;
    m_temporary = path;
    error = odHoldTemporary(path, m_hold);
    if (error == ENOENT) m_temporary.clear();
  }
  if (error != 0) return systemFailure(error, m_target, "creating a file in its folder");
  // Before there is content: a private drawing must not be readable while it is saved.
  return takeAttributes(info);
}

OdStatus FileReplacement::replaceTarget(TargetLock lock) {
  OdStoreFileInfo info;
  OdStatus status = inspectTarget(info);
  if (!status.ok()) return status;
  if (info.exists && !m_replaces) return madeMeanwhile(m_target);
  status = takeAttributes(info);  // they may have changed since create()
  if (!status.ok()) return status;

  if (const int error = fileOps().syncFile(m_temporary); error != 0) {
    return systemFailure(error, m_target, "writing the file to disk");
  }

  Connection target;
  if (info.exists && lock == TargetLock::kTake) status = lockTarget(target);
  if (status.ok()) status = removeSideFiles();
  if (!status.ok()) return status;

  const int error = m_replaces ? fileOps().rename(m_temporary, m_target)
                               : fileOps().renameToFreeName(m_temporary, m_target);
  if (error == EEXIST) return madeMeanwhile(m_target);
  if (error != 0) return systemFailure(error, m_target, "replacing the file");
  m_temporary.clear();
  endHold();
  odNoteFileWritten();
  const int unsynced = fileOps().syncDirectory(m_folder);
  return unsynced == 0 ? OdStatus{} : savedWithoutFolder(unsynced, m_target);
}

OdStatus FileReplacement::inspectTarget(OdStoreFileInfo& info) {
  if (const int error = fileOps().inspect(m_target, info); error != 0) {
    return systemFailure(error, m_target, "looking at the file to replace");
  }
  if (!info.exists || info.isRegular) return {};
  return failure(eFileAccess, m_target, "it is not a regular file and is not replaced");
}

OdStatus FileReplacement::takeAttributes(const OdStoreFileInfo& info) {
  const int error = info.exists ? fileOps().applyAttributes(m_temporary, info) : 0;
  return error == 0 ? OdStatus{}
                    : systemFailure(error, m_target, "taking over the file's permissions");
}

/// Takes the write lock of the target. Also undoes an interrupted save of it.
OdStatus FileReplacement::lockTarget(Connection& connection) {
  OdStatus status =
      connection.open(m_target, ConnectionMode::kReadWrite, m_environment->connection);
  if (!status.ok() || !usesRollbackJournal(connection)) return status;
  status = connection.configure();
  if (status.ok()) status = connection.execute("BEGIN IMMEDIATE", "replacing the file");
  // A damaged drawing may be replaced: SQLite could not read it anyway.
  if (status.code == eCorruptData || status.code == eNotADrawing) return {};
  return status;
}

OdStatus FileReplacement::removeSideFiles() {
  bool removedAny = false;
  for (const char* suffix : kSideFileSuffixes) {
    const std::string path = m_target + suffix;
    OdStoreFileInfo info;
    int error = fileOps().inspect(path, info);
    if (error == 0 && !info.exists) continue;
    if (error == 0) error = fileOps().remove(path);
    if (error != 0) return systemFailure(error, path, "removing a leftover of an earlier save");
    removedAny = true;
  }
  if (!removedAny) return {};
  const int error = fileOps().syncDirectory(m_folder);
  return error == 0 ? OdStatus{} : systemFailure(error, m_folder, "writing the folder to disk");
}

/// Closing any handle of a file drops the locks that SQLite has on it, so this one is closed before
/// SQLite opens the file in its place.
void FileReplacement::endHold() {
  if (m_hold >= 0) ::close(std::exchange(m_hold, -1));
}

void FileReplacement::discard() {
  endHold();
  if (m_temporary.empty()) return;
  fileOps().remove(m_temporary);
  m_temporary.clear();
}

}  // namespace odstorage
