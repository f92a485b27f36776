// Entry to the drawing file: makes the factory that opens, creates and recovers drawings on SQLite.
#pragma once

#include <memory>
#include <string>

#include "platform/db/record_store.h"

class OdStoreFileOps;

/// How the stores of one factory reach the file system. The defaults serve every host; tests put a
/// shim below both seams.
struct OdSqliteStoreOptions {
  /// Name of a registered SQLite VFS; empty for the system's own.
  std::string vfsName;
  /// Operations on whole files; null for the system's own. Shared by all stores of the factory.
  std::shared_ptr<OdStoreFileOps> fileOps;
  /// How long an operation waits for another program's lock, in milliseconds.
  int lockTimeoutMs = 2000;
  /// Page cache of one open file, in KiB.
  int cacheKiB = 8192;
};

/// A factory of SQLite stores. The factory may go before its stores.
///
/// A store that was opened for writing keeps the file's write lock until it is destroyed: readers
/// go on undisturbed, a second writer gets eFileLocked when it opens. A reader whose file is saved
/// by another program afterwards gets eFileChanged from its next read, never a mixture of states.
[[nodiscard]] std::unique_ptr<OdDbRecordStoreFactory> createSqliteStoreFactory(
    OdSqliteStoreOptions options = {});
