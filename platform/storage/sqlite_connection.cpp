// A SQLite connection and its statements.
#include "platform/storage/sqlite_connection.h"

#include <system_error>

#include "platform/storage/side_files.h"
#include "platform/storage/status.h"
#include "platform/storage/storage_format.h"

namespace odstorage {

namespace {

struct CodeRow {
  int sqlite;
  OdResult result;
  const char* text;
};

/// Extended codes first: the first row whose number is the code, or its primary code, counts.
constexpr CodeRow kCodeRows[] = {
    {SQLITE_READONLY_DBMOVED, eFileChanged,
     "the file was deleted, moved or replaced since it was opened"},
    {SQLITE_READONLY_ROLLBACK, eFileAccess,
     "an interrupted save must be undone first, and the file cannot be written"},
    {SQLITE_IOERR_READ, eFileAccess, nullptr},
    {SQLITE_IOERR_SHORT_READ, eCorruptData, "the file ends early"},
    {SQLITE_IOERR_NOMEM, eOutOfMemory, nullptr},
    {SQLITE_BUSY, eFileLocked, "file is locked by another program"},
    {SQLITE_LOCKED, eFileLocked, "file is locked by another program"},
    {SQLITE_FULL, eDiskFull, nullptr},
    {SQLITE_NOTADB, eNotADrawing, "file is not a drawing"},
    {SQLITE_CORRUPT, eCorruptData, "the file's structure is damaged"},
    {SQLITE_CONSTRAINT, eCorruptData, "a row exists twice"},
    {SQLITE_READONLY, eFileAccess, "the file is write-protected"},
    {SQLITE_CANTOPEN, eFileAccess, nullptr},
    {SQLITE_PERM, eFileAccess, nullptr},
    {SQLITE_IOERR, eFileWriteError, nullptr},
    {SQLITE_TOOBIG, eLimitExceeded, "a value is larger than a drawing allows"},
    {SQLITE_NOMEM, eOutOfMemory, nullptr},
};

const CodeRow* findCodeRow(int code) {
  for (const CodeRow& row : kCodeRows) {
    if (row.sqlite == code || row.sqlite == (code & 0xff)) return &row;
  }
  return nullptr;
}

struct LimitRow {
  int limit;
  int value;
};

/// What a drawing needs and no more: hostile files can use nothing else of SQLite.
constexpr LimitRow kLimitRows[] = {
    {SQLITE_LIMIT_LENGTH, static_cast<int>(kMaxRowBytes)},
    {SQLITE_LIMIT_SQL_LENGTH, 4096},
    {SQLITE_LIMIT_COLUMN, 16},
    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_TRIGGER_DEPTH, 1},
    {SQLITE_LIMIT_VARIABLE_NUMBER, 8},
    {SQLITE_LIMIT_WORKER_THREADS, 0},
};

/// Settings of every connection: no trust in what the file's schema says, cells are checked when
/// a page is first read.
constexpr const char* kGuardPragmas = "PRAGMA trusted_schema=OFF;PRAGMA cell_size_check=ON;";

/// EXTRA syncs the folder after the journal is removed: a power loss never undoes a save that was
/// reported. Costs one more sync than FULL; measured, that is within the noise of a commit.
constexpr const char* kWriterPragmas =
    "PRAGMA synchronous=EXTRA;PRAGMA secure_delete=FAST;PRAGMA temp_store=MEMORY;";

/// No other program reads a fresh file before it is complete, synced and renamed.
constexpr const char* kFreshPragmas =
    "PRAGMA page_size=4096;PRAGMA auto_vacuum=NONE;PRAGMA encoding='UTF-8';"
    "PRAGMA locking_mode=EXCLUSIVE;PRAGMA journal_mode=OFF;PRAGMA synchronous=OFF;"
    "PRAGMA secure_delete=OFF;PRAGMA temp_store=MEMORY;";

}  // namespace

// ---- Statement

int Statement::prepare(sqlite3* connection, std::string_view sql) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  m_handle.reset(statement);
  return code;
}

void Statement::bindBlob(int column, const void* data, std::size_t size) {
  // A null pointer would bind NULL, and an empty record is a record.
  sqlite3_bind_blob64(get(), column, size == 0 ? "" : data, size, SQLITE_STATIC);
}

void Statement::bindText(int column, std::string_view text) {
  sqlite3_bind_text64(get(), column, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
}

int Statement::run() {
  const int code = step();
  const int resetCode = sqlite3_reset(get());
  return code == SQLITE_DONE || code == SQLITE_ROW ? SQLITE_OK : resetCode;
}

std::string_view Statement::bytes(int column) const {
  const void* data = sqlite3_column_blob(get(), column);
  if (data == nullptr) return {};
  return {static_cast<const char*>(data), size(column)};
}

// ---- Connection

OdStatus Connection::open(const std::string& path, ConnectionMode mode,
                          const ConnectionOptions& options) {
  m_path = path;
  m_mode = mode;
  m_lockTimeoutMs = options.lockTimeoutMs;
  m_cacheKiB = options.cacheKiB;
  const int flags =
      (mode == ConnectionMode::kReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) |
      SQLITE_OPEN_NOMUTEX;
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &connection, flags,
                                   options.vfsName.empty() ? nullptr : options.vfsName.c_str());
  m_handle.reset(connection);
  OdStatus status = translate(code, "opening");
  if (status.ok() && mode != ConnectionMode::kReadOnly && sqlite3_db_readonly(get(), "main") != 0) {
    status = failure(eFileAccess, path, "opening for writing failed: the file is write-protected");
  }
  if (status.ok()) {
    setLimits();
  } else {
    close();
  }
  return status;
}

void Connection::setLimits() {
  sqlite3_extended_result_codes(get(), 1);
  for (const LimitRow& row : kLimitRows) sqlite3_limit(get(), row.limit, row.value);
  // The defensive setting would also refuse the fresh file's missing journal.
  const int defensive = m_mode == ConnectionMode::kFreshFile ? 0 : 1;
  sqlite3_db_config(get(), SQLITE_DBCONFIG_DEFENSIVE, defensive, nullptr);
  sqlite3_db_config(get(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(get(), SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  setLockTimeout(kUsualTimeout);
}

void Connection::setLockTimeout(int milliseconds) {
  sqlite3_busy_timeout(get(), milliseconds == kUsualTimeout ? m_lockTimeoutMs : milliseconds);
}

OdStatus Connection::configure() {
  if (m_mode != ConnectionMode::kFreshFile) {
    if (OdStatus status = checkSideFiles(m_path); !status.ok()) return status;
  }
  std::string pragmas = kGuardPragmas;
  pragmas += "PRAGMA cache_size=-" + std::to_string(m_cacheKiB) + ";";
  if (m_mode == ConnectionMode::kReadWrite) pragmas += kWriterPragmas;
  if (m_mode == ConnectionMode::kFreshFile) pragmas += kFreshPragmas;
  return execute(pragmas.c_str(), "opening");
}

OdStatus Connection::setCacheSize(int kibibytes) {
  if (kibibytes == kUsualCache) kibibytes = m_cacheKiB;
  return execute(("PRAGMA cache_size=-" + std::to_string(kibibytes) + ";").c_str(), "reading");
}

OdStatus Connection::execute(const char* sql, std::string_view doing) {
  return translate(sqlite3_exec(get(), sql, nullptr, nullptr, nullptr), doing);
}

OdStatus Connection::prepare(Statement& statement, std::string_view sql) {
  if (statement.isPrepared()) return {};
  return translate(statement.prepare(get(), sql), "reading the file's structure");
}

OdStatus Connection::translate(int code, std::string_view doing) const {
  if (code == SQLITE_OK) return {};
  const int primary = code & 0xff;
  const bool isSystem = (primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN) && isOpen();
  const int error = isSystem ? sqlite3_system_errno(get()) : 0;
  if (isDiskFull(error)) return systemFailure(error, m_path, doing);

  const CodeRow* row = findCodeRow(code);
  std::string what(doing);
  what.append(" failed: ");
  if (row != nullptr && row->text != nullptr) {
    what.append(row->text);
  } else {
    what.append(error != 0 ? std::generic_category().message(error) : sqlite3_errstr(code));
  }
  return failure(row != nullptr ? row->result : eGeneralFailure, m_path, what);
}

unsigned Connection::dataVersion() const {
  unsigned version = 0;
  sqlite3_file_control(get(), "main", SQLITE_FCNTL_DATA_VERSION, &version);
  return version;
}

sqlite3_file* Connection::file() const {
  sqlite3_file* found = nullptr;
  sqlite3_file_control(get(), "main", SQLITE_FCNTL_FILE_POINTER, &found);
  return found != nullptr && found->pMethods != nullptr ? found : nullptr;
}

int Connection::readFile(void* target, std::size_t size, std::int64_t offset) const {
  sqlite3_file* opened = file();
  if (opened == nullptr) return SQLITE_CANTOPEN;
  return opened->pMethods->xRead(opened, target, static_cast<int>(size), offset);
}

std::int64_t Connection::fileSize() const {
  sqlite3_file* opened = file();
  sqlite3_int64 size = 0;
  if (opened == nullptr || opened->pMethods->xFileSize(opened, &size) != SQLITE_OK) return 0;
  return size;
}

bool Connection::hasMoved() const {
  int moved = 0;
  sqlite3_file_control(get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

}  // namespace odstorage
