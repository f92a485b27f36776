// Recovery of the intact contents of a damaged drawing file.
//
// Two ways, the second only where the first fails on the content of the file:
//   1. takeWholeFile reads the file as any reader does, checking each row and the digests. A file
//      whose last save was interrupted is whole after SQLite has undone that save, so this way must
//      come first: its pages alone would give a mixture of two states.
//   2. takeIntactRows collects intact rows from the pages (page_scavenger.h). The state row has the
//      number of rows that were saved and the sum of their checksums; comparing them with what was
//      found says whether anything is missing, or is there in an older state. Free pages are
//      searched only then.
// Failures that say nothing about the content, such as a lock or a missing file, end the recovery.
#include "platform/storage/recovery.h"

#include "platform/storage/page_scavenger.h"
#include "platform/storage/sqlite_store.h"
#include "platform/storage/status.h"

namespace odstorage {

namespace {

OdDbRecordView recordOf(const StoredRow& row) {
  OdDbRecordView record;
  record.handle = static_cast<OdUInt64>(row.key);
  record.classId = static_cast<OdUInt32>(row.classId);
  record.owner = row.owner;
  record.data = reinterpret_cast<const OdUInt8*>(row.content.data());
  record.size = row.content.size();
  return record;
}

/// Failures that say nothing about the file's content.
bool isOutside(const OdStatus& status) {
  switch (status.code) {
    case eFileNotFound:
    case eFileAccess:
    case eFileLocked:
    case eFileChanged:
    case eOutOfMemory:
      return true;
    default:
      return false;
  }
}

/// Passes on everything of a file that is whole. The file is read twice: the first pass only
/// checks, so that a failure leaves the sink untouched.
OdStatus takeWholeFile(SqliteStore& store, OdDbRecoverySink& sink) {
  OdStatus status = store.openExisting(OdDbStoreOpenMode::kReadOnly);
  if (status.ok()) status = store.readAll([](const OdDbRecordView&) { return true; });
  if (!status.ok()) return status;
  for (const OdDbStoredSetting& item : store.settings()) sink.settingFound(item);
  for (const OdDbStoredClass& item : store.classes()) sink.classFound(item);
  return store.readAll([&](const OdDbRecordView& record) {
    sink.recordFound(record);
    return true;
  });
}

/// Passes on what a row holds.
void passOn(const StoredRow& row, OdDbRecoverySink& sink) {
  switch (row.table) {
    case StoredRow::Table::kVariables:
      if (row.key == kStateRowId) return;
      return sink.settingFound({std::string(row.name), std::string(row.content)});
    case StoredRow::Table::kClasses:
      return sink.classFound({static_cast<OdUInt32>(row.key), std::string(row.content)});
    case StoredRow::Table::kObjects:
      return sink.recordFound(recordOf(row));
  }
}

/// Sums up the checksums of rows, and compares the sums with the state row.
class Tally {
 public:
  void add(const StoredRow& row) {
    if (row.table == StoredRow::Table::kObjects) {
      m_objects.add(row.sum);
    } else if (row.table == StoredRow::Table::kVariables && row.key == kStateRowId) {
      m_hasState = m_state.decode(row.content);
    } else {
      m_names.add(row.sum);
    }
  }

  /// The rows are known to be those of the last save.
  [[nodiscard]] bool isComplete() const {
    return m_hasState && m_objects == m_state.objects && m_names == m_state.names;
  }

  void reportLosses(OdDbRecoverySink& sink) const {
    if (!m_hasState) {
      return sink.lost("the state row is lost: it is not known whether records are missing");
    }
    report("records", m_objects, m_state.objects, sink);
    report("classes and variables", m_names, m_state.names, sink);
  }

 private:
  static void report(const std::string& what, const RowSetDigest& found, const RowSetDigest& saved,
                     OdDbRecoverySink& sink) {
    if (found == saved) return;
    sink.lost((what + ": " + std::to_string(saved.count) + " were saved, " +
               std::to_string(found.count) + " were brought back" +
               (found.count >= saved.count ? ", some of them in an older state" : ""))
                  .c_str());
  }

  StoreState m_state;
  bool m_hasState = false;
  RowSetDigest m_objects;
  RowSetDigest m_names;
};

/// Leaves what was found in the scavenger.
void findIntactRows(PageScavenger& scavenger) {
  scavenger.walkTrees();
  scavenger.searchLostPages();
  Tally found;
  scavenger.emit([&](const StoredRow& row) { found.add(row); });
  if (!found.isComplete()) scavenger.searchFreePages();
}

OdStatus takeIntactRows(const StoreEnvironment& environment, const std::string& path,
                        const OdStatus& failed, OdDbRecoverySink& sink) {
  Connection file;
  OdStatus status = file.open(path, ConnectionMode::kReadOnly, environment.connection);
  if (!status.ok()) return status;

  std::vector<std::string> lines;
  PageScavenger scavenger(file, [&](const std::string& line) { lines.push_back(line); });
  findIntactRows(scavenger);
  if (scavenger.rowCount() == 0) {
    const bool isForeign = failed.code == eNotADrawing || failed.code == eNewerFormat;
    return isForeign ? failed : failure(eRecoveryFailed, path, "nothing in the file is intact");
  }
  sink.lost(failed.text);
  Tally tally;
  scavenger.emit([&](const StoredRow& row) {
    tally.add(row);
    passOn(row, sink);
  });
  for (const std::string& line : lines) sink.lost(line.c_str());
  tally.reportLosses(sink);
  return {};
}

}  // namespace

OdStatus recoverDrawing(const std::shared_ptr<const StoreEnvironment>& environment,
                        const std::string& path, OdDbRecoverySink& sink) {
  OdStatus status;
  {
    SqliteStore store(environment, OdString(path.c_str()), path);
    status = takeWholeFile(store, sink);
  }
  if (status.ok() || isOutside(status)) return status;
  return takeIntactRows(*environment, path, status, sink);
}

}  // namespace odstorage
