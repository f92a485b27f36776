// OdDbOpenUpgrade: write access to an object that is open in some other way, for a scope.
#pragma once

#include "platform/base/non_copyable.h"
#include "platform/db/db_object.h"
#include "platform/db/locked_layers.h"

/// Upgrades an open object and takes that back at the end of the scope; reactors hear of changes
/// then. The object stays open until the guard ends. Raises as OdDbObject::upgradeOpen, but goes
/// through locked layers: it serves the links between objects, not the edits of a user.
class OdDbOpenUpgrade : OdNonCopyable {
 public:
  explicit OdDbOpenUpgrade(const OdDbObject* object) : m_object(const_cast<OdDbObject*>(object)) {
    const OdDbLockedLayerAccess access(m_object->database());
    m_object->upgradeOpen();
  }
  ~OdDbOpenUpgrade() { m_object->downgradeOpen(); }

 private:
  OdDbObject* m_object;
};
