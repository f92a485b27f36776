// OdDbTypedId: an object id together with how it refers to its object.
#pragma once

#include <functional>

#include "platform/base/types.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"

// A plain pair, copied as memory.
struct VDM_DB_EXPORT OdDbTypedId {
  OdDbObjectId id;
  OdDb::ReferenceType type = OdDb::kSoftPointerRef;

  OdDbTypedId() = default;
  OdDbTypedId(const OdDbObjectId& objectId, OdDb::ReferenceType referenceType)
      : id(objectId), type(referenceType) {}

  friend bool operator==(const OdDbTypedId& a, const OdDbTypedId& b) {
    return a.id == b.id && a.type == b.type;
  }
  // By handle, then database, then reference type: maps of one drawing are filed in an order that
  // does not depend on where its objects lie in memory.
  friend bool operator<(const OdDbTypedId& a, const OdDbTypedId& b) {
    if (a.id == b.id) return a.type < b.type;
    const OdUInt64 handleOfA = a.id.getHandle();
    const OdUInt64 handleOfB = b.id.getHandle();
    if (handleOfA != handleOfB) return handleOfA < handleOfB;
    const OdDbDatabase* databaseOfA = a.id.originalDatabase();
    const OdDbDatabase* databaseOfB = b.id.originalDatabase();
    if (databaseOfA != databaseOfB) return std::less<>()(databaseOfA, databaseOfB);
    return a.type < b.type;
  }
};
