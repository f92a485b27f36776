// Clone members of OdDbDatabase, which the clone service carries out.
#include "platform/db/clone_service.h"
#include "platform/db/database.h"

OdResult OdDbDatabase::deepCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                                        OdDbIdMapping& mapping, bool deferXlation) {
  return OdDbCloneService::installed().deepCloneObjects(this, ids, owner, mapping, deferXlation);
}

OdResult OdDbDatabase::wblockCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                                          OdDbIdMapping& mapping, OdDb::DuplicateRecordCloning drc,
                                          bool deferXlation) {
  return OdDbCloneService::installed().wblockCloneObjects(this, ids, owner, mapping, drc,
                                                          deferXlation);
}

OdDbDatabasePtr OdDbDatabase::wblock(const OdDbObjectId& block) {
  return OdDbCloneService::installed().wblock(this, block);
}
