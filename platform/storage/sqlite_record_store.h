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
  /// Stores that are opened for reading keep one read transaction until they are closed: all that
  /// they read is of one state, and a commit of another program waits until they are closed.
  bool readersHoldOneState = false;
  /// How long a commit waits for such readers, and they for a commit, in milliseconds.
  int commitTimeoutMs = 30000;
};

/// A factory of SQLite stores. The factory may go before its stores.
///
/// A store that was opened for writing keeps the file's write lock until it is destroyed: readers
/// go on undisturbed, a second writer gets eFileLocked when it opens. A reader never sees a mixture
/// of two states: it either holds its state (readersHoldOneState), or gets eFileChanged from its
/// next read after another program saved.
[[nodiscard]] std::unique_ptr<OdDbRecordStoreFactory> createSqliteStoreFactory(
    OdSqliteStoreOptions options = {});
