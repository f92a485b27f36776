// A SQLite connection and its statements, with SQLite's failures turned into store outcomes.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/base/non_copyable.h"
#include "platform/db/record_store.h"

namespace odstorage {

/// A prepared statement. Values that were bound or read are borrowed: bound ones must live until
/// reset, read ones die at the next step or reset.
class Statement {
 public:
  Statement() = default;

  [[nodiscard]] bool isPrepared() const { return m_handle != nullptr; }
  /// SQLite's result code.
  int prepare(sqlite3* connection, std::string_view sql);

  void bind(int column, std::int64_t value) { sqlite3_bind_int64(get(), column, value); }
  void bindBlob(int column, const void* data, std::size_t size);
  void bindText(int column, std::string_view text);
  /// SQLITE_ROW, SQLITE_DONE or a failure.
  int step() { return sqlite3_step(get()); }
  /// Steps once and resets; SQLITE_DONE becomes SQLITE_OK.
  int run();
  void reset() { sqlite3_reset(get()); }

  [[nodiscard]] bool hasType(int column, int type) const {
    return sqlite3_column_type(get(), column) == type;
  }
  [[nodiscard]] std::int64_t integer(int column) const {
    return sqlite3_column_int64(get(), column);
  }
  [[nodiscard]] std::size_t size(int column) const {
    return static_cast<std::size_t>(sqlite3_column_bytes(get(), column));
  }
  /// Bytes of a blob or text column.
  [[nodiscard]] std::string_view bytes(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  [[nodiscard]] sqlite3_stmt* get() const { return m_handle.get(); }

  std::unique_ptr<sqlite3_stmt, Finalizer> m_handle;
};

/// Resets a statement when the scope ends, so that no read lock outlives the call.
class StatementScope : OdNonCopyable {
 public:
  explicit StatementScope(Statement& statement) : m_statement(statement) {}
  ~StatementScope() { m_statement.reset(); }

 private:
  Statement& m_statement;
};

enum class ConnectionMode {
  kReadOnly,
  kReadWrite,
  /// A fresh file that no other program reads: no journal, no syncs, no shared locks.
  kFreshFile,
};

struct ConnectionOptions {
  std::string vfsName;
  int lockTimeoutMs = 0;
  int cacheKiB = 0;
};

/// An open SQLite file, set up to survive hostile content.
class Connection {
 public:
  Connection() = default;

  /// Opens `path` (absolute) and sets the limits. Reads nothing: the caller looks at the first
  /// bytes before SQLite does.
  OdStatus open(const std::string& path, ConnectionMode mode, const ConnectionOptions& options);
  /// Makes the settings that let SQLite read the file, which may undo an interrupted save.
  /// eCorruptData when a file beside the drawing is not to be trusted (side_files.h).
  OdStatus configure();
  void close() { m_handle.reset(); }

  [[nodiscard]] bool isOpen() const { return m_handle != nullptr; }
  [[nodiscard]] sqlite3* get() const { return m_handle.get(); }
  /// The path that messages name.
  [[nodiscard]] const std::string& path() const { return m_path; }
  /// Lets messages name another file: a temporary one means nothing to the reader.
  void setPathInMessages(const std::string& path) { m_path = path; }

  OdStatus execute(const char* sql, std::string_view doing);
  OdStatus prepare(Statement& statement, std::string_view sql);
  /// SQLite's code turned into an outcome whose text says what was being done.
  [[nodiscard]] OdStatus translate(int code, std::string_view doing) const;
  [[nodiscard]] int extendedError() const { return sqlite3_extended_errcode(get()); }

  /// Changes whenever the file's content as seen by this connection changed.
  [[nodiscard]] unsigned dataVersion() const;
  /// How long the next calls wait for locks of other programs.
  static constexpr int kUsualTimeout = -1;
  void setLockTimeout(int milliseconds);
  /// Changes the size of the page cache; kUsualCache is that of the options.
  static constexpr int kUsualCache = 0;
  OdStatus setCacheSize(int kibibytes);
  /// Reads bytes of the file itself, below SQLite's cache. Short reads give zeros.
  /// SQLITE_OK, SQLITE_IOERR_SHORT_READ or another failure.
  int readFile(void* target, std::size_t size, std::int64_t offset) const;
  /// Size of the file in bytes; 0 when the system does not give it.
  [[nodiscard]] std::int64_t fileSize() const;
  /// True when the open file is no longer the one at its path.
  [[nodiscard]] bool hasMoved() const;

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };
  void setLimits();
  [[nodiscard]] sqlite3_file* file() const;

  std::unique_ptr<sqlite3, Closer> m_handle;
  std::string m_path;
  ConnectionMode m_mode = ConnectionMode::kReadOnly;
  int m_lockTimeoutMs = 0;
  int m_cacheKiB = 0;
};

}  // namespace odstorage
