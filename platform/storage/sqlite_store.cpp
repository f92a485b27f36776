// The record store on SQLite: reading.
#include "platform/storage/sqlite_store.h"

#include <array>
#include <limits>
#include <utility>

#include "platform/storage/status.h"

namespace odstorage {

namespace {

/// Handles are unsigned, keys signed: first the keys from 0 on, then the negative ones.
struct KeyRange {
  std::int64_t first;
  std::int64_t last;
};
constexpr std::array<KeyRange, 2> kKeyRanges = {
    KeyRange{0, std::numeric_limits<std::int64_t>::max()},
    KeyRange{std::numeric_limits<std::int64_t>::min(), -1},
};

bool hasRecordTypes(const Statement& row) {
  return row.hasType(1, SQLITE_INTEGER) && row.hasType(2, SQLITE_INTEGER) &&
         row.hasType(3, SQLITE_INTEGER) && row.hasType(4, SQLITE_BLOB);
}

std::string recordName(OdUInt64 handle) { return "record " + handleText(handle); }

}  // namespace

SqliteStore::SqliteStore(std::shared_ptr<const StoreEnvironment> environment, OdString givenPath,
                         std::string path)
    : m_environment(std::move(environment)),
      m_givenPath(std::move(givenPath)),
      m_path(std::move(path)) {}

SqliteStore::~SqliteStore() { closeConnection(); }

// ---- Helpers

OdStatus SqliteStore::fail(OdResult code, const std::string& what) const {
  return failure(code, m_path, what);
}

OdStatus SqliteStore::statement(Sql sql, Statement*& prepared) {
  const auto index = static_cast<std::size_t>(sql);
  prepared = &m_statements[index];
  return m_connection.prepare(*prepared, kStatements[index]);
}

OdStatus SqliteStore::checkUsable() {
  releaseHeldRecord();
  return m_unusable;
}

void SqliteStore::releaseHeldRecord() {
  if (m_heldStatement != nullptr) m_heldStatement->reset();
  m_heldStatement = nullptr;
}

/// A reader has no lock between its calls, so another program may have saved since it opened the
/// file. Called while a statement holds the read lock.
OdStatus SqliteStore::checkUnchanged() {
  if (!isReadOnly() || m_connection.dataVersion() == m_dataVersion) return {};
  m_unusable = fail(eFileChanged, "another program saved the file since it was opened");
  return m_unusable;
}

// ---- Single records

OdStatus SqliteStore::readRecord(OdUInt64 handle, OdDbRecordView& record) {
  record = {};
  OdStatus status = checkUsable();
  Statement* row = nullptr;
  if (status.ok()) status = statement(Sql::kReadRecord, row);
  if (!status.ok()) return status;

  const auto key = static_cast<std::int64_t>(handle);
  row->bind(1, key);
  const int code = row->step();
  m_heldStatement = row;
  if (code == SQLITE_ROW || code == SQLITE_DONE) {
    status = checkUnchanged();
    if (status.ok() && code == SQLITE_DONE) {
      status = checkNeighbours(key);
      if (status.ok()) status.code = eUnknownHandle;
    }
  } else {
    status = m_connection.translate(code, "reading " + recordName(handle));
  }
  if (status.ok()) status = checkRow(*row, record);
  if (status.ok() && isReadOnly()) {
    m_recordCopy.assign(record.data, record.data + record.size);
    record.data = m_recordCopy.data();
  }
  if (!status.ok() || isReadOnly()) releaseHeldRecord();
  if (!status.ok()) record = {};
  return status;
}

/// Checks the row under `row` (columns handle, class, owner, sum, data) and makes `record` a view
/// of it.
OdStatus SqliteStore::checkRow(const Statement& row, OdDbRecordView& record) {
  record.handle = static_cast<OdUInt64>(row.integer(0));
  const std::int64_t classId = row.integer(1);
  if (!hasRecordTypes(row) || classId < 0 || classId > std::numeric_limits<OdUInt32>::max()) {
    return fail(eCorruptData,
                recordName(record.handle) + " is damaged: its columns have other types");
  }
  record.size = row.size(4);
  if (record.size > kMaxRecordBytes) {
    return fail(eLimitExceeded, recordName(record.handle) + " has " + std::to_string(record.size) +
                                    " bytes, at most " + std::to_string(kMaxRecordBytes) +
                                    " are allowed");
  }
  record.classId = static_cast<OdUInt32>(classId);
  record.owner = static_cast<OdUInt64>(row.integer(2));
  record.data = reinterpret_cast<const OdUInt8*>(row.bytes(4).data());
  const auto sum = static_cast<std::uint64_t>(row.integer(3));
  if (const std::uint64_t found = recordChecksum(record); found != sum) {
    return fail(eChecksumMismatch, recordName(record.handle) + " is damaged: its checksum is " +
                                       handleText(found) + ", saved was " + handleText(sum));
  }
  return {};
}

/// Distinguishes a record that is absent from one that cannot be found because an inner page of the
/// tree is damaged. A search in a sound tree ends between two neighbours of the key; one that a
/// damaged page misled ends elsewhere. Costs two more searches on a miss, and no walk over the
/// file.
OdStatus SqliteStore::checkNeighbours(std::int64_t key) {
  for (const Sql sql : {Sql::kNextHandle, Sql::kPreviousHandle}) {
    Statement* row = nullptr;
    OdStatus status = statement(sql, row);
    if (!status.ok()) return status;
    const StatementScope scope(*row);
    row->bind(1, key);
    const int code = row->step();
    if (code == SQLITE_DONE) continue;
    if (code != SQLITE_ROW) return m_connection.translate(code, "looking for a record");
    const std::int64_t found = row->integer(0);
    if (sql == Sql::kNextHandle ? found > key : found < key) continue;
    return fail(eCorruptData, recordName(static_cast<OdUInt64>(key)) +
                                  " cannot be found: the order of the records is damaged near " +
                                  recordName(static_cast<OdUInt64>(found)));
  }
  return {};
}

OdStatus SqliteStore::readRecordHeader(OdUInt64 handle, OdUInt32& classId, OdUInt64& owner) {
  OdDbRecordView record;
  OdStatus status = readRecord(handle, record);
  classId = record.classId;
  owner = record.owner;
  return status;
}

// ---- All records

/// Steps through all rows of `sql` in rising handle order. `visit(row)` returns false to stop and
/// reports failures through its status argument. The statement is the walk's own, so that a
/// visitor may read further records.
template <typename Visit>
OdStatus SqliteStore::scan(Sql sql, bool& stopped, const Visit& visit) {
  stopped = false;
  OdStatus status = checkUsable();
  Statement rows;
  if (status.ok()) {
    status = m_connection.prepare(rows, kStatements[static_cast<std::size_t>(sql)]);
  }
  for (const KeyRange& range : kKeyRanges) {
    if (!status.ok() || stopped) break;
    const StatementScope scope(rows);
    rows.bind(1, range.first);
    rows.bind(2, range.last);
    int code = rows.step();
    if (code == SQLITE_ROW || code == SQLITE_DONE) status = checkUnchanged();
    for (; status.ok() && !stopped && code == SQLITE_ROW; code = rows.step()) {
      stopped = !visit(rows, status);
      if (stopped || !status.ok()) break;
    }
    if (status.ok() && !stopped && code != SQLITE_DONE) {
      status = m_connection.translate(code, "reading the records");
    }
  }
  return status;
}

OdStatus SqliteStore::checkDigest(const RowSetDigest& digest) {
  if (digest == m_state.objects) return {};
  return fail(eChecksumMismatch,
              "the records are not those that were saved: " + std::to_string(digest.count) +
                  " with digest " + handleText(digest.sum) + " were found, " +
                  std::to_string(m_state.objects.count) + " with digest " +
                  handleText(m_state.objects.sum) + " were saved");
}

OdStatus SqliteStore::readAll(const std::function<bool(const OdDbRecordView&)>& visit) {
  RowSetDigest digest;
  bool stopped = false;
  // A walk reads each page once. A large cache would only scatter the memory of what is loaded.
  constexpr int kWalkCacheKiB = 256;
  OdStatus status = checkUsable();
  if (status.ok()) status = m_connection.setCacheSize(kWalkCacheKiB);
  if (!status.ok()) return status;
  status = scan(Sql::kReadRecords, stopped, [&](Statement& row, OdStatus& failed) {
    OdDbRecordView record;
    failed = checkRow(row, record);
    if (!failed.ok()) return true;
    digest.add(static_cast<std::uint64_t>(row.integer(3)));
    return visit(record);
  });
  const OdStatus restored = m_connection.setCacheSize(Connection::kUsualCache);
  if (status.ok()) status = restored;
  return status.ok() && !stopped ? checkDigest(digest) : status;
}

/// Reads no data: the digest is formed from the stored checksums.
OdStatus SqliteStore::listRecords(
    const std::function<bool(OdUInt64 handle, OdUInt32 classId, OdUInt64 owner, std::size_t size)>&
        visit) {
  RowSetDigest digest;
  bool stopped = false;
  OdStatus status = scan(Sql::kListRecords, stopped, [&](Statement& row, OdStatus&) {
    digest.add(static_cast<std::uint64_t>(row.integer(3)));
    return visit(static_cast<OdUInt64>(row.integer(0)), static_cast<OdUInt32>(row.integer(1)),
                 static_cast<OdUInt64>(row.integer(2)), static_cast<std::size_t>(row.integer(4)));
  });
  return status.ok() && !stopped ? checkDigest(digest) : status;
}

}  // namespace odstorage
