// OdDbCloneService: what objects and drawings ask of the library that clones them.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/base/result.h"
#include "platform/db/database.h"
#include "platform/db/db_enums.h"
#include "platform/db/db_object.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/object_id.h"

class OdDbIdMapping;
class OdDbIdPair;

/// The members of OdDbObject and OdDbDatabase that clone call the installed service, so that the
/// core does not know how cloning is done. One service serves all drawings of the process; it is
/// installed before the first drawing is made.
class OdDbCloneService : OdNonCopyable {
 public:
  OdDbCloneService() = default;

  /// OdDbObject::deepClone and wblockClone: one object through its hook.
  virtual OdDbObjectPtr cloneObject(const OdDbObject* source, OdDbIdMapping& mapping,
                                    OdDbObject* owner, bool isPrimary,
                                    OdDbDwgFiler::FilerType type) const = 0;
  /// What the hooks subDeepClone and subWblockClone do by default.
  virtual OdDbObjectPtr defaultHook(const OdDbObject* source, OdDbIdMapping& mapping,
                                    OdDbObject* owner, bool isPrimary,
                                    OdDbDwgFiler::FilerType type) const = 0;
  /// What OdDbObject::appendToOwner does by default.
  virtual void listWithOwner(OdDbObject* clone, const OdDbIdPair& pair, OdDbObject* owner,
                             OdDbIdMapping& mapping) const = 0;
  /// OdDbDatabase::deepCloneObjects.
  virtual OdResult deepCloneObjects(OdDbDatabase* database, const OdDbObjectIdArray& ids,
                                    const OdDbObjectId& owner, OdDbIdMapping& mapping,
                                    bool deferXlation) const = 0;
  /// OdDbDatabase::wblockCloneObjects.
  virtual OdResult wblockCloneObjects(OdDbDatabase* source, const OdDbObjectIdArray& ids,
                                      const OdDbObjectId& owner, OdDbIdMapping& mapping,
                                      OdDb::DuplicateRecordCloning drc,
                                      bool deferXlation) const = 0;
  /// OdDbDatabase::wblock.
  virtual OdDbDatabasePtr wblock(OdDbDatabase* source, const OdDbObjectId& block) const = 0;

  /// Takes the place of the present one; null for none. The service outlives its installation.
  static void install(const OdDbCloneService* service);
  /// Raises eClassNotRegistered while none is installed.
  [[nodiscard]] static const OdDbCloneService& installed();

 protected:
  ~OdDbCloneService() = default;
};
