// Locked layers: what keeps their entities from being changed, and the ways through. An entity on a
// locked layer does not open for write: openObject() gives null, safeOpenObject() and upgradeOpen()
// raise eOnLockedLayer. It can be read, and what was open for write before can be finished.
#pragma once

#include "platform/db/db_object.h"

class OdDbDatabase;
class OdDbEntity;

/// While it lives, entities of the drawing open for write whatever their layer. For services that
/// keep a drawing consistent (cloning, mending, updating of what depends on a change), not for the
/// edits of a user. Nests; null is legal. The drawing outlives it.
class OdDbLockedLayerAccess {
 public:
  explicit OdDbLockedLayerAccess(OdDbDatabase* database);
  ~OdDbLockedLayerAccess();
  OdDbLockedLayerAccess(const OdDbLockedLayerAccess&) = delete;
  OdDbLockedLayerAccess& operator=(const OdDbLockedLayerAccess&) = delete;

 private:
  OdDbDatabase* m_database;
};

/// The layer of the entity is locked. The entity need not be open.
[[nodiscard]] bool oddbIsOnLockedLayer(const OdDbEntity* entity);
/// Whether the layer of the object refuses a write open: it is an entity on a locked layer, not
/// open for write already, and no OdDbLockedLayerAccess lives for its drawing.
[[nodiscard]] bool oddbRefusesWrite(const OdDbObject* object);
/// OdDbObjectId::openAs for write, also on a locked layer.
template <class T>
[[nodiscard]] OdSmartPtr<T> oddbOpenThroughLock(const OdDbObjectId& id, bool openErased = false) {
  const OdDbLockedLayerAccess access(id.database());
  return id.openAs<T>(OdDb::kForWrite, openErased);
}
