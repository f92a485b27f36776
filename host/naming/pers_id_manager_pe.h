// The extension through which the module finds and makes dependencies.
#pragma once

#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"

namespace vdm_host {

/// Attached to VdmDbPersIdManager by registerNaming(). Which subentity is still the same one is
/// decided in ReferenceUpdate, which drives the manager; here is what remains: dependencies are
/// looked up by path, made with the link, a hash of the subentity's shape and a first record, and
/// moved to another path. The numbers of a path are those of the solid's present body.
class PersIdManagerExtension : public VdmDbPersIdManagerPE {
 public:
  void prepareAppend(VdmDbPersIdManager* manager, const OdDbFullSubentPathArray& paths,
                     OdDbDatabase* database) override;
  void findExisting(VdmDbPersIdManager* manager, const OdDbFullSubentPathArray& paths,
                    OdDbObjectIdArray& ids) override;
  void updateDependency(VdmDbPersIdManager* manager, const OdDbObjectId& dependency,
                        const OdDbFullSubentPath& path) override;
  void createDependencies(OdDbObjectIdArray& newIds, VdmDbPersIdManager* manager,
                          const OdDbFullSubentPathArray& paths, OdDbUserIO* userIO,
                          OdDbObjectIdArray& existing) override;
};

/// Attach the extension to the manager's class and take it off again. The module that holds
/// VdmDbPersIdManager is loaded. Calls nest.
void registerNaming();
void unregisterNaming();

}  // namespace vdm_host
