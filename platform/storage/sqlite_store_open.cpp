// Opening of a drawing file: from the path to a store that has read nothing but the names.
//
// openExisting() runs the steps in the order in which trust grows: the file's own bytes before
// SQLite looks at it, its schema before a row is read, the state row and the digest of classes and
// variables before anything is handed out. Objects are checked when they are read.
#include <limits>
#include <utility>

#include "platform/storage/file_header.h"
#include "platform/storage/sqlite_store.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

constexpr std::string_view kReadingNames = "reading classes and variables";

/// Sizes are compared before the content is looked at.
OdStatus checkNameSize(std::string_view path, std::string_view what, std::size_t size,
                       std::size_t limit) {
  if (size <= limit) return {};
  return failure(eLimitExceeded, path,
                 std::string(what) + " has " + std::to_string(size) + " bytes, at most " +
                     std::to_string(limit) + " are allowed");
}

OdStatus nameDamaged(std::string_view path, const std::string& what) {
  return failure(eChecksumMismatch, path, what + " is damaged: its checksum does not match");
}

}  // namespace

OdStatus SqliteStore::openExisting(OdDbStoreOpenMode mode) {
  m_mode = mode;
  m_unusable = {};
  OdStatus status = connect();
  if (status.ok()) status = identifyFile();
  if (status.ok()) status = configureConnection();
  if (status.ok()) status = beginSession();
  if (status.ok()) status = checkFile();
  if (status.ok()) status = loadNames();
  if (status.ok()) status = findMaxHandle();
  if (status.ok()) status = endReading();
  if (!status.ok()) {
    m_unusable = status;
    closeConnection();
  }
  return status;
}

OdStatus SqliteStore::connect() {
  OdStoreFileInfo info;
  if (const int error = m_environment->fileOps->inspect(m_path, info); error != 0) {
    return systemFailure(error, m_path, "opening");
  }
  if (!info.exists) return fail(eFileNotFound, "the file was not found");
  if (!info.isRegular) return fail(eFileAccess, "it is not a regular file");
  return m_connection.open(m_path,
                           isReadOnly() ? ConnectionMode::kReadOnly : ConnectionMode::kReadWrite,
                           m_environment->connection);
}

/// Needs no lock: the fields that are looked at never change in the life of a file.
OdStatus SqliteStore::identifyFile() {
  FileHeader header = {};
  const int code = m_connection.readFile(header.data(), header.size(), 0);
  if (code == SQLITE_IOERR_SHORT_READ) {
    return fail(eNotADrawing, "file is not a drawing: it is shorter than the header of one");
  }
  if (code != SQLITE_OK) return m_connection.translate(code, "reading the file header");
  OdStatus status = identify(header, m_path, m_version);
  // Whether a newer format may be read is known once its state row is.
  if (status.code == eNewerFormat && isReadOnly()) status = {};
  if (status.ok()) status = checkFixedFields(header, m_path);
  return status;
}

OdStatus SqliteStore::configureConnection() {
  OdStatus status = m_connection.configure();
  if (status.ok() || m_connection.extendedError() != SQLITE_READONLY_ROLLBACK) return status;
  status = undoInterruptedSave();
  if (status.ok()) status = m_connection.configure();
  return status;
}

/// A reading connection may not write, so a second one undoes the interrupted save.
OdStatus SqliteStore::undoInterruptedSave() {
  Connection writer;
  OdStatus status = writer.open(m_path, ConnectionMode::kReadWrite, m_environment->connection);
  if (status.ok()) status = writer.configure();
  return status;
}

OdStatus SqliteStore::beginSession() {
  if (!isReadOnly()) return takeWriteLock();
  if (m_environment->readersHoldOneState) {
    m_connection.setLockTimeout(m_environment->commitTimeoutMs);
  }
  return m_connection.execute("BEGIN", "opening");
}

OdStatus SqliteStore::checkFile() {
  OdStatus status;
  if (!isReadOnly()) status = upgradeSchema(m_connection, m_version);
  if (status.ok()) status = checkSchema(m_connection, m_version > kFormatVersion);
  return status;
}

OdStatus SqliteStore::loadNames() {
  RowSetDigest digest;
  OdStatus status = loadVariables(digest);
  if (status.ok()) status = loadClasses(digest);
  if (!status.ok()) return status;
  if (digest != m_state.names) {
    return fail(eChecksumMismatch,
                "classes and variables are incomplete: " + std::to_string(digest.count) +
                    " rows were found, " + std::to_string(m_state.names.count) + " were saved");
  }
  return {};
}

OdStatus SqliteStore::loadVariables(RowSetDigest& digest) {
  m_variables.clear();
  m_variableRows.clear();
  m_variableIndex.clear();
  Statement* rows = nullptr;
  OdStatus status = statement(Sql::kReadVariables, rows);
  if (!status.ok()) return status;
  const StatementScope scope(*rows);
  bool hasState = false;
  int code = rows->step();
  for (; code == SQLITE_ROW; code = rows->step()) {
    const std::int64_t id = rows->integer(0);
    status = checkVariableRow(*rows, "header row " + std::to_string(id));
    if (!status.ok()) return status;
    const std::string_view key = rows->bytes(1);
    const std::string_view value = rows->bytes(3);
    const auto sum = static_cast<std::uint64_t>(rows->integer(2));
    if (id == kStateRowId) {
      status = loadStateRow(id, value);
      if (!status.ok()) return status;
      hasState = true;
      continue;
    }
    digest.add(sum);
    if (!m_variableIndex.emplace(key, m_variables.size()).second) {
      return fail(eCorruptData, "variable \"" + std::string(key) + "\" exists twice");
    }
    m_variables.push_back({std::string(key), std::string(value)});
    m_variableRows.push_back({id, sum});
  }
  if (code != SQLITE_DONE) return m_connection.translate(code, kReadingNames);
  return hasState ? OdStatus{} : fail(eCorruptData, "the state row is missing");
}

OdStatus SqliteStore::checkVariableRow(const Statement& row, const std::string& what) const {
  if (!row.hasType(1, SQLITE_TEXT) || !row.hasType(2, SQLITE_INTEGER) ||
      !row.hasType(3, SQLITE_BLOB)) {
    return fail(eCorruptData, what + " is damaged: its columns have other types");
  }
  OdStatus status = checkNameSize(m_path, "key of " + what, row.size(1), kMaxVariableKeyBytes);
  if (status.ok()) status = checkNameSize(m_path, what, row.size(3), kMaxVariableBytes);
  if (!status.ok()) return status;
  if (m_variables.size() >= kMaxVariables) {
    return fail(eLimitExceeded,
                "the file has more than " + std::to_string(kMaxVariables) + " drawing settings");
  }
  const auto sum = static_cast<std::uint64_t>(row.integer(2));
  if (sum != variableChecksum(row.integer(0), row.bytes(1), row.bytes(3))) {
    return nameDamaged(m_path, what);
  }
  return {};
}

OdStatus SqliteStore::loadStateRow(std::int64_t id, std::string_view value) {
  if (!m_state.decode(value)) {
    return fail(eCorruptData, "the state row " + std::to_string(id) + " has " +
                                  std::to_string(value.size()) + " bytes, expected " +
                                  std::to_string(kStateRowBytes));
  }
  if (m_state.minReaderVersion <= static_cast<std::uint32_t>(kFormatVersion)) return {};
  return newerFormat(m_path, m_version);
}

OdStatus SqliteStore::loadClasses(RowSetDigest& digest) {
  m_classes.clear();
  m_classRows.clear();
  Statement* rows = nullptr;
  OdStatus status = statement(Sql::kReadClasses, rows);
  if (!status.ok()) return status;
  const StatementScope scope(*rows);
  int code = rows->step();
  for (; code == SQLITE_ROW; code = rows->step()) {
    const std::int64_t id = rows->integer(0);
    const std::string what = "class " + std::to_string(id);
    if (id < 1 || id > INT64_C(0xFFFFFFFF) || !rows->hasType(1, SQLITE_INTEGER) ||
        !rows->hasType(2, SQLITE_BLOB)) {
      return fail(eCorruptData, what + " is damaged: its columns have other types");
    }
    status = checkNameSize(m_path, what, rows->size(2), kMaxClassBytes);
    if (status.ok() && m_classes.size() >= kMaxClasses) {
      status = fail(eLimitExceeded,
                    "the file has more than " + std::to_string(kMaxClasses) + " classes");
    }
    if (!status.ok()) return status;

    const auto classId = static_cast<std::uint32_t>(id);
    const std::string_view record = rows->bytes(2);
    const auto sum = static_cast<std::uint64_t>(rows->integer(1));
    if (sum != classChecksum(classId, record)) return nameDamaged(m_path, what);
    digest.add(sum);
    m_classes.push_back({classId, std::string(record)});
    m_classRows.push_back({id, sum});
  }
  return code == SQLITE_DONE ? OdStatus{} : m_connection.translate(code, kReadingNames);
}

/// The greatest handle is the last of the negative keys, or else the last of all.
OdStatus SqliteStore::findMaxHandle() {
  m_maxHandle = 0;
  for (const std::int64_t limit : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()}) {
    bool exists = false;
    std::int64_t key = 0;
    OdStatus status = findLastKey(limit, exists, key);
    if (status.ok() && exists) m_maxHandle = static_cast<OdUInt64>(key);
    if (!status.ok() || exists) return status;
  }
  return {};
}

OdStatus SqliteStore::findLastKey(std::int64_t limit, bool& exists, std::int64_t& key) {
  Statement* row = nullptr;
  OdStatus status = statement(Sql::kLastHandle, row);
  if (!status.ok()) return status;
  const StatementScope scope(*row);
  row->bind(1, limit);
  const int code = row->step();
  exists = code == SQLITE_ROW;
  key = exists ? row->integer(0) : 0;
  return exists || code == SQLITE_DONE
             ? OdStatus{}
             : m_connection.translate(code, "looking for the last record");
}

OdStatus SqliteStore::endReading() {
  m_dataVersion = m_connection.dataVersion();
  const bool holdsLock = !isReadOnly() || m_environment->readersHoldOneState;
  return holdsLock ? OdStatus{} : m_connection.execute("COMMIT", "opening");
}

void SqliteStore::closeConnection() {
  m_heldStatement = nullptr;
  for (Statement& prepared : m_statements) prepared = {};
  m_connection.close();
  m_hasWriteLock = false;
  m_dataVersion = 0;
}

}  // namespace odstorage
