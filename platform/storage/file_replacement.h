// A fresh file beside a drawing that takes the drawing's place once it is complete.
#pragma once

#include <memory>
#include <string>

#include "platform/base/non_copyable.h"
#include "platform/db/record_store.h"
#include "platform/storage/file_ops.h"
#include "platform/storage/sqlite_connection.h"

namespace odstorage {

/// What stores need from outside; shared by the stores of one factory.
struct StoreEnvironment {
  ConnectionOptions connection;
  bool readersHoldOneState = false;
  int commitTimeoutMs = 0;
  std::shared_ptr<OdStoreFileOps> fileOps;
};

/// Who holds the write lock of the file that is replaced.
enum class TargetLock {
  kTake,  ///< no store of ours: it is taken for the moment of replacement
  kHeld,  ///< the caller
};

/// A temporary file in the folder of its target. Until replaceTarget returns, the target is as it
/// was; the destructor removes a temporary file that did not take its place.
class FileReplacement : OdNonCopyable {
 public:
  /// `target` is an absolute path without symbolic links.
  FileReplacement(std::shared_ptr<const StoreEnvironment> environment, std::string target);
  ~FileReplacement();

  [[nodiscard]] const std::string& temporary() const { return m_temporary; }

  /// Creates the empty temporary file ".<name>.<16 random hex digits>.tmp" with the permissions of
  /// the file it will replace. Refuses a target that could not be replaced, before any work was
  /// done for it. A process that is killed leaves the temporary file; nothing ever reads it, and
  /// the next replacement of the same target removes it.
  OdStatus create(TargetLock lock);
  /// Puts the complete, closed temporary file durably in the target's place. Permissions of a
  /// replaced file are kept. eFileLocked when another store has the target open for writing,
  /// eFileChanged when nothing lay there at create() and something does now.
  OdStatus replaceTarget(TargetLock lock);
  /// Removes the temporary file.
  void discard();

 private:
  OdStatus inspectTarget(OdStoreFileInfo& info);
  OdStatus takeAttributes(const OdStoreFileInfo& info);
  OdStatus lockTarget(Connection& connection);
  OdStatus createTemporary(const OdStoreFileInfo& info);
  OdStatus removeSideFiles();
  void endHold();
  [[nodiscard]] OdStoreFileOps& fileOps() const { return *m_environment->fileOps; }

  std::shared_ptr<const StoreEnvironment> m_environment;
  std::string m_target;
  std::string m_folder;
  std::string m_temporary;
  int m_hold = -1;  ///< the locked temporary file, see odHoldTemporary()
  bool m_replaces = false;
};

}  // namespace odstorage
