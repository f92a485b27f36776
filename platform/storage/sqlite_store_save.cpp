// The record store on SQLite: saving of records and compaction. Classes, variables and the state
// row are written in sqlite_store_names.cpp.
//
// A save of an existing file is the commit of one transaction, which SQLite makes atomic with its
// journal. The steps of a save (put, remove) write their rows at once and keep the state row's
// digests up to date in memory; the commit writes the state row last. A step that fails is
// remembered and makes the commit fail, so a file never gets half of a save. Nothing is read but
// the old checksums of rows that are replaced.
//
// A fresh file needs no journal: it is not read before it is complete, and takes its place by the
// steps of file_replacement.h. Compaction is a fresh file with the rows of the present one.
//
// The write lock is held from the opening on, and taken again at once after a commit. Between the
// two another program can save; the data version shows that, and the next save here is refused
// instead of overwriting it.
#include <algorithm>
#include <cerrno>
#include <tuple>
#include <utility>

#include "platform/base/work_note.h"
#include "platform/storage/sqlite_store.h"
#include "platform/storage/status.h"

namespace odstorage {

// ---- Fresh files

OdStatus SqliteStore::startFresh(TargetLock lock) {
  m_mode = OdDbStoreOpenMode::kReadWrite;
  m_version = kFormatVersion;
  m_freshLock = lock;
  m_fresh = std::make_unique<FileReplacement>(m_environment, m_path);
  OdStatus status = m_fresh->create(lock);
  if (status.ok()) {
    status = m_connection.open(m_fresh->temporary(), ConnectionMode::kFreshFile,
                               m_environment->connection);
  }
  m_connection.setPathInMessages(m_path);
  if (status.ok()) status = m_connection.configure();
  if (status.ok()) status = m_connection.execute("BEGIN", kSaving);
  if (status.ok()) status = createSchema(m_connection);
  if (status.ok()) status = writeStateRow(Sql::kInsertVariable);
  m_isSaving = status.ok();
  if (!status.ok()) {
    m_unusable = status;
    abandonSave();
  }
  return status;
}

OdStatus SqliteStore::commitFresh() {
  OdStatus status = writeStateRow(Sql::kUpdateVariable);
  if (status.ok()) status = m_connection.execute("COMMIT", kSaving);
  closeConnection();
  if (status.ok()) status = m_fresh->replaceTarget(m_freshLock);
  m_isSaving = false;
  if (!status.ok()) {
    m_unusable = status;
    abandonSave();
    return status;
  }
  m_fresh.reset();
  return openExisting(OdDbStoreOpenMode::kReadWrite);
}

// ---- Save

/// Takes the write lock, unless it is held already. eFileChanged when another program saved since
/// this store last had it.
OdStatus SqliteStore::takeWriteLock() {
  if (m_hasWriteLock) return {};
  OdStatus status = m_connection.execute("BEGIN IMMEDIATE", "opening for writing");
  if (!status.ok()) return status;
  if (m_dataVersion != 0 && m_connection.dataVersion() != m_dataVersion) {
    std::ignore = m_connection.execute("ROLLBACK", "opening for writing");
    return fail(eFileChanged, "another program saved the file since it was last saved here");
  }
  m_hasWriteLock = true;
  return {};
}

OdStatus SqliteStore::beginSave() {
  OdStatus status = checkUsable();
  if (!status.ok()) return status;
  if (isReadOnly()) return fail(eReadOnlyDatabase, "saving failed: the file is open for reading");
  if (m_isSaving) return fail(eInvalidOpenState, "a save of this file is running already");
  status = takeWriteLock();
  if (!status.ok()) return status;
  // A large save writes pages ahead of its commit where it can. It must not wait for readers each
  // time that it cannot.
  m_connection.setLockTimeout(0);
  m_savedState = m_state;
  m_saveFailure = {};
  m_isChanged = false;
  m_namesChanged = false;
  m_isSaving = true;
  return {};
}

OdStatus SqliteStore::checkSaving() {
  OdStatus status = checkUsable();
  if (status.ok()) status = m_saveFailure;
  if (status.ok() && !m_isSaving) {
    status = fail(eInvalidOpenState, "no save of this file is running");
  }
  return status;
}

OdStatus SqliteStore::noteSaveFailure(OdStatus status) {
  if (!status.ok() && m_isSaving) m_saveFailure = status;
  return status;
}

/// The checksum of a stored record. Handles above the greatest one are new and need no search.
OdStatus SqliteStore::findSum(OdUInt64 handle, bool& exists, std::uint64_t& sum) {
  exists = false;
  if (handle > m_maxHandle) return {};
  const auto key = static_cast<std::int64_t>(handle);
  Statement* row = nullptr;
  OdStatus status = statement(Sql::kReadSum, row);
  if (!status.ok()) return status;
  const StatementScope scope(*row);
  row->bind(1, key);
  const int code = row->step();
  if (code == SQLITE_DONE) return checkNeighbours(key);
  if (code != SQLITE_ROW) return m_connection.translate(code, kSaving);
  exists = true;
  sum = static_cast<std::uint64_t>(row->integer(0));
  return {};
}

OdStatus SqliteStore::putRecord(const OdDbRecordView& record) {
  OdStatus status = checkSaving();
  if (status.ok() && record.handle == 0) {
    status = fail(eInvalidInput, "a record with handle 0 cannot be saved");
  }
  if (status.ok() && record.size > kMaxRecordBytes) {
    status = fail(eLimitExceeded, "record " + handleText(record.handle) + " has " +
                                      std::to_string(record.size) + " bytes, at most " +
                                      std::to_string(kMaxRecordBytes) + " can be saved");
  }
  bool exists = false;
  std::uint64_t oldSum = 0;
  if (status.ok()) status = findSum(record.handle, exists, oldSum);
  Statement* row = nullptr;
  if (status.ok()) status = statement(exists ? Sql::kUpdateRecord : Sql::kInsertRecord, row);
  if (!status.ok()) return noteSaveFailure(status);

  const std::uint64_t sum = recordChecksum(record);
  row->bind(1, static_cast<std::int64_t>(record.handle));
  row->bind(2, record.classId);
  row->bind(3, static_cast<std::int64_t>(record.owner));
  row->bind(4, static_cast<std::int64_t>(sum));
  row->bindBlob(5, record.data, record.size);
  if (const int code = row->run(); code != SQLITE_OK) {
    return noteSaveFailure(m_connection.translate(code, kSaving));
  }
  if (exists) m_state.objects.remove(oldSum);
  m_state.objects.add(sum);
  m_maxHandle = std::max(m_maxHandle, record.handle);
  m_isChanged = true;
  return {};
}

OdStatus SqliteStore::removeRecord(OdUInt64 handle) {
  OdStatus status = checkSaving();
  bool exists = false;
  std::uint64_t sum = 0;
  if (status.ok()) status = findSum(handle, exists, sum);
  if (!status.ok()) return noteSaveFailure(status);
  if (!exists) return {};
  Statement* row = nullptr;
  status = statement(Sql::kDeleteRecord, row);
  if (status.ok()) {
    row->bind(1, static_cast<std::int64_t>(handle));
    status = m_connection.translate(row->run(), kSaving);
  }
  if (!status.ok()) return noteSaveFailure(status);
  m_state.objects.remove(sum);
  m_isChanged = true;
  return {};
}

// ---- End of a save

OdStatus SqliteStore::commitSave() {
  OdStatus status = checkSaving();
  if (status.ok()) return m_fresh != nullptr ? commitFresh() : commitExisting();
  if (m_isSaving) abandonSave();
  return status;
}

/// SQLite compares the file with its path when the journal is made; rows may take long to write
/// after that.
OdStatus SqliteStore::checkNotMoved(const std::string& doing) const {
  if (!m_connection.hasMoved()) return {};
  return fail(eFileChanged,
              doing + " failed: the file was deleted, moved or replaced since it was opened");
}

/// A commit has to wait until no program reads the file. New readers wait for it in turn.
OdStatus SqliteStore::commitAmongReaders() {
  m_connection.setLockTimeout(m_environment->commitTimeoutMs);
  OdStatus status = m_connection.execute("COMMIT", kSaving);
  if (status.code != eFileLocked) return status;
  return fail(eFileLocked, "saving failed: another program still reads the file after a wait of " +
                               std::to_string(m_environment->commitTimeoutMs) + " ms");
}

OdStatus SqliteStore::commitExisting() {
  OdStatus status;
  if (m_isChanged) {
    status = writeStateRow(Sql::kUpdateVariable);
    if (status.ok()) status = checkNotMoved("saving");
    if (status.ok()) status = commitAmongReaders();
    // The removal of the journal is the commit; the sync of its folder comes after it.
    const bool isCommitted = status.ok() || m_connection.extendedError() == SQLITE_IOERR_DIR_FSYNC;
    if (!isCommitted) {
      abandonSave();
      return status;
    }
    if (!status.ok()) status = savedWithoutFolder(EIO, m_path);
    odNoteFileWritten();
    m_connection.setLockTimeout(Connection::kUsualTimeout);
    // The lock is taken again at once. Where another program was quicker, this save is done all the
    // same, and the next one reports the change.
    m_hasWriteLock = false;
    m_dataVersion = m_connection.dataVersion();
    std::ignore = takeWriteLock();
  }
  m_connection.setLockTimeout(Connection::kUsualTimeout);
  m_isSaving = false;
  return status;
}

void SqliteStore::rollbackSave() {
  if (!m_isSaving) return;
  releaseHeldRecord();
  abandonSave();
}

/// Undoes everything since beginSave(). A store that loses its fresh file by that, or cannot return
/// to the saved state, is not usable any more.
void SqliteStore::abandonSave() {
  m_isSaving = false;
  if (m_fresh != nullptr) {
    closeConnection();
    m_fresh->discard();
    if (m_unusable.ok()) m_unusable = fail(eInvalidOpenState, "the save was given up");
    return;
  }
  m_connection.setLockTimeout(Connection::kUsualTimeout);
  // After some failures SQLite has rolled back by itself.
  if (sqlite3_get_autocommit(m_connection.get()) == 0) {
    std::ignore = m_connection.execute("ROLLBACK", kSaving);
  }
  m_hasWriteLock = false;
  m_dataVersion = m_connection.dataVersion();
  m_state = m_savedState;
  OdStatus status = takeWriteLock();
  if (status.ok() && m_namesChanged) status = loadNames();
  if (!status.ok()) m_unusable = status;
}

/// Holds the write lock of the file at the path afterwards.
OdStatus SqliteStore::lockForReplacing(const std::string& doing) {
  OdStatus status = checkUsable();
  if (!status.ok()) return status;
  if (isReadOnly()) return fail(eReadOnlyDatabase, doing + " failed: the file is open for reading");
  if (m_isSaving) return fail(eInvalidOpenState, doing + " failed: a save is running");
  status = takeWriteLock();
  return status.ok() ? checkNotMoved(doing) : status;
}

OdStatus SqliteStore::createReplacement(std::unique_ptr<OdDbRecordStore>& store) {
  store.reset();
  OdStatus status = lockForReplacing("replacing");
  if (!status.ok()) return status;
  auto fresh = std::make_unique<SqliteStore>(m_environment, m_givenPath, m_path);
  status = fresh->startFresh(TargetLock::kHeld);
  if (status.ok()) store = std::move(fresh);
  return status;
}

// ---- Compaction

OdStatus SqliteStore::compact() {
  OdStatus status = lockForReplacing("compacting");
  if (!status.ok()) return status;
  {
    SqliteStore fresh(m_environment, m_givenPath, m_path);
    status = fresh.startFresh(TargetLock::kHeld);
    if (status.ok()) status = copyAllTo(fresh);
    if (status.ok()) status = fresh.commitSave();
    // A failure before the renaming leaves the file in its place and this store as it was. After
    // it, the store must open the new file, whatever failed then.
    if (!status.ok() && !m_connection.hasMoved()) return status;
  }
  closeConnection();
  OdStatus reopened = openExisting(OdDbStoreOpenMode::kReadWrite);
  return status.ok() ? reopened : status;
}

OdStatus SqliteStore::copyAllTo(SqliteStore& target) {
  for (const OdDbStoredSetting& item : m_variables) {
    if (OdStatus status = target.putSetting(item); !status.ok()) return status;
  }
  for (const OdDbStoredClass& item : m_classes) {
    if (OdStatus status = target.putClass(item); !status.ok()) return status;
  }
  OdStatus copied;
  OdStatus read = readAll([&](const OdDbRecordView& record) {
    copied = target.putRecord(record);
    return copied.ok();
  });
  return copied.ok() ? read : copied;
}

}  // namespace odstorage
