// The seam between a drawing database and the file that holds its records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/status.h"
#include "platform/base/types.h"

/// One object as the file keeps it. `data` is borrowed: the maker of the view owns it.
struct OdDbRecordView {
  OdUInt64 handle = 0;   ///< never 0 in a stored record
  OdUInt32 classId = 0;  ///< number of the class in the store's class list
  OdUInt64 owner = 0;    ///< handle of the owner, 0 for roots
  const OdUInt8* data = nullptr;
  std::size_t size = 0;  ///< bytes
};

/// A named class record or drawing setting; `value` is opaque to the store.
struct OdDbStoredClass {
  OdUInt32 id = 0;  ///< 1.. ; never reused within one file
  std::string value;
};
struct OdDbStoredSetting {
  std::string key;  ///< UTF-8, unique
  std::string value;
};

/// Receives what a recovery finds. Records come in rising handle order; views die after the call.
class OdDbRecoverySink {
 public:
  virtual ~OdDbRecoverySink() = default;
  virtual void classFound(const OdDbStoredClass& item) = 0;
  virtual void settingFound(const OdDbStoredSetting& item) = 0;
  virtual void recordFound(const OdDbRecordView& record) = 0;
  /// One line about something that could not be brought back.
  virtual void lost(const OdString& line) = 0;
};

/// An open drawing file as a set of records. Reading is lazy: nothing is read that is not asked
/// for, and every record that is handed out has passed its checksum. One thread at a time.
class OdDbRecordStore {
 public:
  virtual ~OdDbRecordStore() = default;

  // Queries.
  [[nodiscard]] virtual OdString path() const = 0;
  [[nodiscard]] virtual bool isReadOnly() const = 0;
  /// Format version of the file.
  [[nodiscard]] virtual int formatVersion() const = 0;
  /// Greatest handle of any record, 0 when there is none. Cheap.
  [[nodiscard]] virtual OdUInt64 maxHandle() = 0;
  /// Classes and settings, read once when the file was opened.
  [[nodiscard]] virtual const std::vector<OdDbStoredClass>& classes() const = 0;
  [[nodiscard]] virtual const std::vector<OdDbStoredSetting>& settings() const = 0;

  /// Reads one record. eUnknownHandle when the file has none (text stays empty then),
  /// eChecksumMismatch or eCorruptData when it is damaged. The view is valid until the next call
  /// on the store.
  virtual OdStatus readRecord(OdUInt64 handle, OdDbRecordView& record) = 0;
  /// The same without handing out data (class and owner only, still checked).
  virtual OdStatus readRecordHeader(OdUInt64 handle, OdUInt32& classId, OdUInt64& owner) = 0;
  /// All records in rising handle order, each checked, then the file's digest over all of them.
  /// `visit` returns false to stop early (the digest is not checked then).
  virtual OdStatus readAll(const std::function<bool(const OdDbRecordView&)>& visit) = 0;
  /// All handles with class and owner in rising order, without checking the data.
  virtual OdStatus listRecords(
      const std::function<bool(OdUInt64 handle, OdUInt32 classId, OdUInt64 owner,
                               std::size_t size)>& visit) = 0;

  // Saving: begin, any number of puts and removes, then commit or rollback. Until commit returns
  // eOk a reader sees the old state; a kill at any moment leaves the old state or the new one.
  virtual OdStatus beginSave() = 0;
  /// Inserts or replaces.
  virtual OdStatus putRecord(const OdDbRecordView& record) = 0;
  /// Removing an absent record is not an error.
  virtual OdStatus removeRecord(OdUInt64 handle) = 0;
  virtual OdStatus putClass(const OdDbStoredClass& item) = 0;
  virtual OdStatus putSetting(const OdDbStoredSetting& item) = 0;
  /// Durable when it returns eOk; on failure everything is rolled back.
  virtual OdStatus commitSave() = 0;
  virtual void rollbackSave() = 0;

  /// Starts a fresh file that is to replace this store's own file, as
  /// OdDbRecordStoreFactory::create does. This store keeps the write lock and goes on serving reads
  /// until it is destroyed, which is due right after the fresh store's commitSave().
  virtual OdStatus createReplacement(std::unique_ptr<OdDbRecordStore>& store) = 0;

  /// Rewrites the file without its free space, through a fresh file that is renamed over it.
  virtual OdStatus compact() = 0;
};

enum class OdDbStoreOpenMode {
  kReadWrite,
  kReadOnly,
};

/// Opens, creates and recovers drawing files. Stateless; shared by all databases of a host.
class OdDbRecordStoreFactory {
 public:
  virtual ~OdDbRecordStoreFactory() = default;

  /// eFileNotFound, eFileAccess, eNotADrawing, eNewerFormat, eFileLocked, eCorruptData.
  /// A file of a newer format that still allows reading by this version opens read-only when
  /// `mode` is kReadOnly, and is refused for writing.
  virtual OdStatus open(const OdString& path, OdDbStoreOpenMode mode,
                        std::unique_ptr<OdDbRecordStore>& store) = 0;
  /// Starts a fresh file for `path` in the same folder under a temporary name. The returned store
  /// is in the state after beginSave(); its commitSave() makes the file durable and renames it to
  /// `path`, replacing what stood there, and the store then is the open file `path`. Destroying
  /// the store before commit, or rollbackSave(), removes the temporary file.
  /// Records must be put in rising handle order for the best speed; any order is legal.
  virtual OdStatus create(const OdString& path, std::unique_ptr<OdDbRecordStore>& store) = 0;
  /// Hands every intact item of a damaged file to `sink`; eNotADrawing or eFileNotFound when there
  /// is nothing to work on, eRecoveryFailed when no record is intact.
  virtual OdStatus recover(const OdString& path, OdDbRecoverySink& sink) = 0;
};
