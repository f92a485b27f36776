// VdmDbPersIdManagerPE: how a host finds geometry again after it was computed anew.
#pragma once

#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"

class OdDbDatabase;
class OdDbUserIO;
class VdmDbPersIdManager;

/// Protocol extension of VdmDbPersIdManager: the rules by which a subentity is still the same one.
/// The manager is open for write in all calls but updateDependency, where it is open for read.
class VDM_DB_EXPORT VdmDbPersIdManagerPE : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbPersIdManagerPE)

  /// findExisting() and createDependencies() follow for `paths`. The entities have model objects.
  virtual void prepareAppend(VdmDbPersIdManager* manager, const OdDbFullSubentPathArray& paths,
                             OdDbDatabase* database) = 0;
  /// Fills `ids` with one id per path, in order: the dependency that there is already, or null.
  virtual void findExisting(VdmDbPersIdManager* manager, const OdDbFullSubentPathArray& paths,
                            OdDbObjectIdArray& ids) = 0;
  /// Makes the dependency refer to `path`, with the numbers that belong to it.
  virtual void updateDependency(VdmDbPersIdManager* manager, const OdDbObjectId& dependency,
                                const OdDbFullSubentPath& path) = 0;
  /// Makes a dependency, owned by the manager, for each path that has none, and adds its id to
  /// `newIds`. Afterwards `existing` has one id per path, in order. Paths are best set before a
  /// dependency is added to the database: model objects then keep what they know.
  virtual void createDependencies(OdDbObjectIdArray& newIds, VdmDbPersIdManager* manager,
                                  const OdDbFullSubentPathArray& paths, OdDbUserIO* userIO,
                                  OdDbObjectIdArray& existing) = 0;
};
using VdmDbPersIdManagerPEPtr = OdSmartPtr<VdmDbPersIdManagerPE>;
