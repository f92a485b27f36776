// Exchange of the ids of two objects.
#include <utility>

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/object_extra.h"
#include "platform/filer/id_filer.h"

namespace {

void checkSwappable(const OdDbObject* object) {
  const OdString name = OdString("object ") + object->getDbHandle().ascii();
  if (static_cast<OdUInt64>(object->getDbHandle()) < OdDbRootHandles::kFirstFree) {
    throw OdError(eInvalidInput, name + ", which every drawing has");
  }
  if (!object->isIdSwappable()) throw OdError(eWrongObjectType, name);
}

/// What the object files as owned and names it as its owner.
OdDbObjectIdArray ownedBy(const OdDbObject* object) {
  OdDbIdFiler filer(object->database());
  object->dwgOutFields(&filer);
  OdDbObjectIdArray owned;
  for (const OdDbFiledId& reference : filer.ids()) {
    if (OdDb::isOwnership(reference.type) && reference.id.ownerId() == object->objectId()) {
      owned.append(reference.id);
    }
  }
  return owned;
}

void handTo(const OdDbObjectId& owner, const OdDbObjectIdArray& owned) {
  for (const OdDbObjectId& id : owned) {
    const OdDbObjectPtr object = id.openObject(OdDb::kForWrite, /*openErased=*/true);
    if (!object.isNull()) object->setOwnerId(owner);
  }
}

}  // namespace

void OdDbObject::swapIdWith(const OdDbObjectId& otherId, bool swapExtendedData,
                            bool swapExtDictionary) {
  if (m_idRecord == nullptr) throw OdError(eNoDatabase, OdString("object to swap ids"));
  if (otherId == objectId()) return;
  const OdDbObjectPtr other = otherId.safeOpenObject(OdDb::kForWrite);
  if (other->database() != database()) {
    throw OdError(eWrongDatabase, OdString("object ") + otherId.getHandle().ascii());
  }
  checkSwappable(this);
  checkSwappable(other);
  subSwapIdWith(otherId, swapExtendedData, swapExtDictionary);
}

void OdDbObject::subSwapIdWith(const OdDbObjectId& otherId, bool swapExtendedData,
                               bool swapExtDictionary) {
  const OdDbObjectPtr other = otherId.safeOpenObject(OdDb::kForWrite);
  const bool swapsExtra = swapExtendedData || swapExtDictionary;
  assertWriteEnabled(/*autoUndo=*/swapsExtra);
  other->assertWriteEnabled(/*autoUndo=*/swapsExtra);
  if (swapExtendedData) std::swap(extra().xdata, other->extra().xdata);
  if (swapExtDictionary) std::swap(extra().extensionDictionary, other->extra().extensionDictionary);

  const OdDbObjectId ownId = objectId();
  const OdDbObjectIdArray owned = ownedBy(this);
  const OdDbObjectIdArray ownedByOther = ownedBy(other);
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(m_idRecord);
  impl.undo.recordSwap(m_idRecord, other->m_idRecord);
  impl.swapObjects(m_idRecord, other->m_idRecord);
  handTo(otherId, owned);
  handTo(ownId, ownedByOther);
}

void OdDbObject::subIdSwapped() {}

void OdDbDatabaseImpl::swapObjects(OdDbIdRecord* a, OdDbIdRecord* b) {
  std::swap(a->object, b->object);
  std::swap(a->objectClass, b->objectClass);
  std::swap(a->undoStep, b->undoStep);  // what is recorded belongs to the object
  a->object->m_idRecord = a;
  b->object->m_idRecord = b;
  for (OdDbIdRecord* idRecord : {a, b}) {
    markDirty(idRecord);
    idRecord->object->subIdSwapped();
  }
}
