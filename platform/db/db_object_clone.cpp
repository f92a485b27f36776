// Clone hooks of OdDbObject.
#include "platform/db/db_object.h"
#include "platform/db/deep_clone.h"
#include "platform/db/id_mapping.h"

OdDbObjectPtr OdDbObject::deepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                    bool isPrimary) const {
  return OdDbCloner::cloneObject(this, mapping, owner, isPrimary, OdDbDwgFiler::kDeepCloneFiler);
}

OdDbObjectPtr OdDbObject::wblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                      bool isPrimary) const {
  return OdDbCloner::cloneObject(this, mapping, owner, isPrimary, OdDbDwgFiler::kWblockCloneFiler);
}

OdDbObjectPtr OdDbObject::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                       bool isPrimary) const {
  return OdDbCloner::defaultHook(this, mapping, owner, isPrimary, OdDbDwgFiler::kDeepCloneFiler);
}

OdDbObjectPtr OdDbObject::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                         bool isPrimary) const {
  return OdDbCloner::defaultHook(this, mapping, owner, isPrimary, OdDbDwgFiler::kWblockCloneFiler);
}

void OdDbObject::appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) {
  OdDbCloner::listWithOwner(this, pair, owner, mapping);
}
