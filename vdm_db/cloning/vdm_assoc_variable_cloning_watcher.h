// AssocVariableCloningWatcher: which variables a clone operation has made.
#pragma once

#include <unordered_set>

#include "platform/cloning/id_mapping.h"
#include "platform/db/database_reactor.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/common/vdm_object_id_hash.h"

namespace vdmu {

/// Tells variables that a clone operation makes from those that were there before. It is a reactor
/// of the destination from cloningStarted() to cloningEnded(), or to its own end; a drawing that
/// closes in between ends it, too. One watcher serves one operation at a time.
class VDM_DB_EXPORT AssocVariableCloningWatcher : public OdDbDatabaseReactor {
 public:
  OD_RX_DECLARE_MEMBERS(AssocVariableCloningWatcher)

  AssocVariableCloningWatcher();
  ~AssocVariableCloningWatcher() override;

  /// The variables of the source that getClonedWithMasterVars() begins with.
  void setMasterVariables(const OdDbObjectIdArray& variables);
  /// Forgets what was seen and watches the mapping's destination; the drawing of the master
  /// variables while that is not set.
  void cloningStarted(OdDbIdMapping& mapping);
  /// Adds the cloned variables of the mapping, and stops watching.
  void cloningEnded(OdDbIdMapping& mapping);
  /// Clones of the master variables, then the variables that define them, as far as the operation
  /// has made them; each once.
  [[nodiscard]] OdDbObjectIdArray getClonedWithMasterVars(OdDbIdMapping& mapping) const;

  void objectAppended(const OdDbDatabase* database, const OdDbObject* object) override;
  void goodbye(const OdDbDatabase* database) override;

 private:
  void startWatching(OdDbDatabase* database);
  void stopWatching();
  [[nodiscard]] bool isVariableClone(OdDbObjectId id) const { return m_appended.contains(id); }
  void populateFromMap(OdDbIdMapping& mapping);

  OdDbDatabase* m_database = nullptr;  // that is watched
  std::unordered_set<OdDbObjectId, OdDbObjectIdHash> m_appended;
  OdDbObjectIdArray m_masters;
};

}  // namespace vdmu
