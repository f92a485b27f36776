// Locked layers: what keeps their entities from being changed, and the ways through.
//
// The layer is asked when an entity opens for write, and not when it changes: what was open before
// the layer was locked, and what is new, can be finished.
#include "platform/db/locked_layers.h"

#include "platform/db/database_impl.h"
#include "platform/db/internal_access.h"
#include "platform/db/layer_table.h"

OdDbLockedLayerAccess::OdDbLockedLayerAccess(OdDbDatabase* database) : m_database(database) {
  if (m_database != nullptr) ++m_database->impl().lockedLayerAccesses;
}

OdDbLockedLayerAccess::~OdDbLockedLayerAccess() {
  if (m_database != nullptr) --m_database->impl().lockedLayerAccesses;
}

bool oddbIsOnLockedLayer(const OdDbEntity* entity) {
  const OdDbInternalRead readable(const_cast<OdDbEntity*>(entity));
  const OdDbLayerTableRecordPtr layer = entity->layerId().openAs<OdDbLayerTableRecord>();
  return !layer.isNull() && layer->isLocked();
}

bool oddbRefusesWrite(const OdDbObject* object) {
  if (object->database()->impl().lockedLayerAccesses > 0 || object->isWriteEnabled()) return false;
  return object->isKindOf(OdDbEntity::desc()) &&
         oddbIsOnLockedLayer(static_cast<const OdDbEntity*>(object));
}
