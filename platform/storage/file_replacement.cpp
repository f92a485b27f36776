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

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <random>
#include <utility>

#include "platform/storage/file_header.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

constexpr int kNameAttempts = 16;

/// Files that SQLite would take for a part of the target's state.
constexpr const char* kSideFileSuffixes[] = {"-journal", "-wal", "-shm"};

std::string randomSuffix() {
  std::random_device device;
  const std::uint64_t bits = (std::uint64_t{device()} << 32U) | device();
  char text[24];
  std::snprintf(text, sizeof text, ".%016" PRIx64 ".tmp", bits);
  return text;
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

  const std::string name = m_target.substr(m_folder.size());
  int error = 0;
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    const std::string path = m_folder + "." + name + randomSuffix();
    error = fileOps().createExclusive(path);
    if (error == 0) {
      m_temporary = path;
      // Before there is content: a private drawing must not be readable while it is saved.
      return takeAttributes(info);
    }
    if (error != EEXIST) break;
  }
  return systemFailure(error, m_target, "creating a file in its folder");
}

OdStatus FileReplacement::replaceTarget(TargetLock lock) {
  OdStoreFileInfo info;
  OdStatus status = inspectTarget(info);
  if (!status.ok()) return status;
  status = takeAttributes(info);  // they may have changed since create()
  if (!status.ok()) return status;

  if (const int error = fileOps().syncFile(m_temporary); error != 0) {
    return systemFailure(error, m_target, "writing the file to disk");
  }

  Connection target;
  if (info.exists && lock == TargetLock::kTake) status = lockTarget(target);
  if (status.ok()) status = removeSideFiles();
  if (!status.ok()) return status;

  if (const int error = fileOps().rename(m_temporary, m_target); error != 0) {
    return systemFailure(error, m_target, "replacing the file");
  }
  m_temporary.clear();
  if (const int error = fileOps().syncDirectory(m_folder); error != 0) {
    return systemFailure(error, m_target, "the file is saved, but writing its folder to disk");
  }
  return {};
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

void FileReplacement::discard() {
  if (m_temporary.empty()) return;
  fileOps().remove(m_temporary);
  m_temporary.clear();
}

}  // namespace odstorage
