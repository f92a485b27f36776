// Clone members of OdDbObject, which the clone service carries out.
#include "platform/db/clone_service.h"
#include "platform/db/db_object.h"

OdDbObjectPtr OdDbObject::deepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                    bool isPrimary) const {
  return OdDbCloneService::installed().cloneObject(this, mapping, owner, isPrimary,
                                                   OdDbDwgFiler::kDeepCloneFiler);
}

OdDbObjectPtr OdDbObject::wblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                      bool isPrimary) const {
  return OdDbCloneService::installed().cloneObject(this, mapping, owner, isPrimary,
                                                   OdDbDwgFiler::kWblockCloneFiler);
}

OdDbObjectPtr OdDbObject::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                       bool isPrimary) const {
  return OdDbCloneService::installed().defaultHook(this, mapping, owner, isPrimary,
                                                   OdDbDwgFiler::kDeepCloneFiler);
}

OdDbObjectPtr OdDbObject::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                         bool isPrimary) const {
  return OdDbCloneService::installed().defaultHook(this, mapping, owner, isPrimary,
                                                   OdDbDwgFiler::kWblockCloneFiler);
}

void OdDbObject::appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) {
  OdDbCloneService::installed().listWithOwner(this, pair, owner, mapping);
}
