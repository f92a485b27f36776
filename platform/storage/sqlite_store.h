// The record store on SQLite: private part of the drawing file.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/db/record_store.h"
#include "platform/storage/file_replacement.h"
#include "platform/storage/record_checksum.h"
#include "platform/storage/schema.h"
#include "platform/storage/sqlite_connection.h"

namespace odstorage {

/// What a save that fails was doing, for messages.
inline constexpr std::string_view kSaving = "saving";

/// An open drawing file. Three forms:
///
///  - read-only: every call reads the file under a lock of its own and holds none between calls, or
///    the store holds one state from opening to closing, as the options of its factory say;
///  - for writing: one transaction with the write lock is always open, so that a second writer is
///    refused from the start, reads need no lock calls, and a save is the commit of it;
///  - fresh (from create() until commitSave()): a temporary file that no other program reads.
class SqliteStore final : public OdDbRecordStore {
 public:
  explicit SqliteStore(std::shared_ptr<const StoreEnvironment> environment, OdString givenPath,
                       std::string path);
  ~SqliteStore() override;
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  /// Opens the existing file. Called once, on a new store.
  OdStatus openExisting(OdDbStoreOpenMode mode);
  /// Starts the fresh file that will replace the file at the path. `lock` says who holds the lock
  /// of that file. Called once, on a new store.
  OdStatus startFresh(TargetLock lock);

  [[nodiscard]] OdString path() const override { return m_givenPath; }
  [[nodiscard]] bool isReadOnly() const override { return m_mode == OdDbStoreOpenMode::kReadOnly; }
  [[nodiscard]] int formatVersion() const override { return m_version; }
  /// Found out when the file is opened. Records that this store removed still count.
  [[nodiscard]] OdUInt64 maxHandle() override { return m_maxHandle; }
  [[nodiscard]] const std::vector<OdDbStoredClass>& classes() const override { return m_classes; }
  [[nodiscard]] const std::vector<OdDbStoredSetting>& settings() const override {
    return m_variables;
  }

  OdStatus readRecord(OdUInt64 handle, OdDbRecordView& record) override;
  OdStatus readRecordHeader(OdUInt64 handle, OdUInt32& classId, OdUInt64& owner) override;
  OdStatus readAll(const std::function<bool(const OdDbRecordView&)>& visit) override;
  OdStatus listRecords(const std::function<bool(OdUInt64 handle, OdUInt32 classId, OdUInt64 owner,
                                                std::size_t size)>& visit) override;

  OdStatus beginSave() override;
  OdStatus putRecord(const OdDbRecordView& record) override;
  OdStatus removeRecord(OdUInt64 handle) override;
  OdStatus putClass(const OdDbStoredClass& item) override;
  OdStatus putSetting(const OdDbStoredSetting& item) override;
  OdStatus commitSave() override;
  void rollbackSave() override;
  OdStatus createReplacement(std::unique_ptr<OdDbRecordStore>& store) override;
  OdStatus compact() override;

 private:
  /// Row of a class or variable beside what the interface shows of it.
  struct NameRow {
    std::int64_t id = 0;
    std::uint64_t sum = 0;
  };

  // Opening (sqlite_store_open.cpp), in this order.
  OdStatus connect();
  OdStatus identifyFile();
  OdStatus configureConnection();
  OdStatus undoInterruptedSave();
  OdStatus beginSession();
  OdStatus checkFile();
  OdStatus loadNames();
  OdStatus loadVariables(RowSetDigest& digest);
  OdStatus checkVariableRow(const Statement& row, const std::string& what) const;
  OdStatus loadClasses(RowSetDigest& digest);
  OdStatus loadStateRow(std::int64_t id, std::string_view value);
  OdStatus findMaxHandle();
  OdStatus findLastKey(std::int64_t limit, bool& exists, std::int64_t& key);
  OdStatus endReading();
  void closeConnection();

  // Reading.
  OdStatus checkUsable();
  OdStatus checkUnchanged();
  OdStatus checkNeighbours(std::int64_t key);
  OdStatus checkRow(const Statement& row, OdDbRecordView& record);
  template <typename Visit>
  OdStatus scan(Sql sql, bool& stopped, const Visit& visit);
  OdStatus checkDigest(const RowSetDigest& digest);
  void releaseHeldRecord();

  // Saving.
  OdStatus checkSaving();
  OdStatus findSum(OdUInt64 handle, bool& exists, std::uint64_t& sum);
  [[nodiscard]] OdStatus checkClassLimits(const OdDbStoredClass& item, bool exists) const;
  [[nodiscard]] OdStatus checkVariableLimits(const OdDbStoredSetting& item, bool exists) const;
  OdStatus writeClass(Sql sql, const OdDbStoredClass& item, std::uint64_t sum);
  OdStatus writeVariable(Sql sql, std::int64_t id, std::string_view key, std::string_view value,
                         std::uint64_t sum);
  OdStatus writeStateRow(Sql sql);
  OdStatus commitFresh();
  OdStatus commitExisting();
  OdStatus commitAmongReaders();
  void abandonSave();
  OdStatus takeWriteLock();
  [[nodiscard]] OdStatus checkNotMoved(const std::string& doing) const;
  OdStatus lockForReplacing(const std::string& doing);
  OdStatus copyAllTo(SqliteStore& target);

  OdStatus statement(Sql sql, Statement*& prepared);
  OdStatus fail(OdResult code, const std::string& what) const;
  /// Keeps the first failure of a save, so that a save with a failed step is never committed.
  OdStatus noteSaveFailure(OdStatus status);

  std::shared_ptr<const StoreEnvironment> m_environment;
  OdString m_givenPath;
  std::string m_path;
  OdDbStoreOpenMode m_mode = OdDbStoreOpenMode::kReadWrite;
  int m_version = 0;

  // As stored.
  StoreState m_state;
  std::vector<OdDbStoredClass> m_classes;  ///< rising ids
  std::vector<NameRow> m_classRows;        ///< parallel to m_classes
  std::vector<OdDbStoredSetting> m_variables;
  std::vector<NameRow> m_variableRows;  ///< parallel to m_variables
  std::unordered_map<std::string, std::size_t> m_variableIndex;

  // Transient. Statements die before their connection.
  std::unique_ptr<FileReplacement> m_fresh;
  TargetLock m_freshLock = TargetLock::kTake;
  Connection m_connection;
  std::array<Statement, static_cast<std::size_t>(Sql::kCount)> m_statements;
  Statement* m_heldStatement = nullptr;  ///< owns the bytes of the last record handed out
  std::vector<std::uint8_t> m_recordCopy;
  OdUInt64 m_maxHandle = 0;
  unsigned m_dataVersion = 0;
  bool m_hasWriteLock = false;
  OdStatus m_unusable;  ///< why the store can no longer be used

  // The running save.
  bool m_isSaving = false;
  bool m_isChanged = false;
  bool m_namesChanged = false;
  OdStatus m_saveFailure;
  StoreState m_savedState;
};

}  // namespace odstorage
