// OdDbObjectId: members that need the database of the id.
#include "platform/filer/object_id.h"

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/locked_layers.h"
#include "platform/db/proxy_object.h"

namespace {

constexpr int kMaxRedirections = 16;    // a chain longer than this is a cycle
constexpr int kMaxOwnerDepth = 100000;  // likewise for owners in a damaged drawing

OdDbIdRecord* redirected(OdDbIdRecord* idRecord) {
  for (int i = 0;
       i < kMaxRedirections && idRecord != nullptr && idRecord->has(OdDbIdRecord::kRedirected);
       ++i) {
    idRecord = idRecord->owner;
  }
  return idRecord;
}

/// Why an object could not be opened; eOk when it was.
OdResult open(OdDbIdRecord* idRecord, OdDb::OpenMode mode, bool openErased, OdDbObject*& object) {
  idRecord = redirected(idRecord);
  if (idRecord == nullptr) return eNullObjectId;
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(idRecord);
  object = impl.resident(idRecord);
  if (object == nullptr) {
    return idRecord->has(OdDbIdRecord::kUnloadable) ? eCorruptData : eUnknownHandle;
  }
  if (idRecord->has(OdDbIdRecord::kErased)) {
    if (idRecord->has(OdDbIdRecord::kUnappended) || !openErased) return eWasErased;
  }
  if (mode == OdDb::kForWrite) {
    if (impl.readOnly) return eReadOnlyDatabase;
    if (object->isNotifyEnabled()) return eWasOpenForNotify;
    if (oddbRefusesWrite(object)) return eOnLockedLayer;
  }
  return eOk;
}

}  // namespace

OdDbObjectPtr OdDbObjectId::openObject(OdDb::OpenMode mode, bool openErased) const {
  OdDbObject* object = nullptr;
  if (open(m_idRecord, mode, openErased, object) != eOk) return OdDbObjectPtr();
  return OdDbObject::opened(object, mode);
}

OdDbObjectPtr OdDbObjectId::safeOpenObject(OdDb::OpenMode mode, bool openErased) const {
  OdDbObject* object = nullptr;
  const OdResult result = open(m_idRecord, mode, openErased, object);
  if (result != eOk) throw OdError(result, OdString("object ") + getHandle().ascii());
  return OdDbObject::opened(object, mode);
}

bool OdDbObjectId::isValid() const {
  OdDbIdRecord* idRecord = redirected(m_idRecord);
  if (idRecord == nullptr) return false;
  OdDbDatabaseImpl::of(idRecord).ensureHeader(idRecord);
  return idRecord->has(OdDbIdRecord::kHeaderKnown);
}

bool OdDbObjectId::isErased() const {
  OdDbIdRecord* idRecord = redirected(m_idRecord);
  return idRecord == nullptr || idRecord->has(OdDbIdRecord::kErased) || !isValid();
}

bool OdDbObjectId::isEffectivelyErased() const {
  OdDbObjectId id = *this;
  for (int depth = 0; depth < kMaxOwnerDepth; ++depth) {
    if (id.isErased()) return true;
    const OdDbObjectId owner = id.ownerId();
    if (owner.isNull()) return false;
    id = owner;
  }
  return true;
}

OdDbDatabase* OdDbObjectId::database() const {
  const OdDbIdRecord* idRecord = redirected(m_idRecord);
  return idRecord == nullptr ? nullptr : idRecord->database;
}

OdRxClass* OdDbObjectId::objectClass() const {
  OdDbIdRecord* idRecord = redirected(m_idRecord);
  if (idRecord == nullptr) return nullptr;
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(idRecord);
  if (idRecord->object == nullptr && idRecord->objectClass == OdDbProxyObject::desc() &&
      idRecord->objectClass != nullptr) {
    idRecord->clear(OdDbIdRecord::kHeaderKnown);  // the class may have been registered since
  }
  impl.ensureHeader(idRecord);
  return idRecord->objectClass;
}

OdDbObjectId OdDbObjectId::ownerId() const {
  OdDbIdRecord* idRecord = redirected(m_idRecord);
  if (idRecord == nullptr) return kNull;
  OdDbDatabaseImpl::of(idRecord).ensureHeader(idRecord);
  return OdDbObjectId(idRecord->owner);
}

bool OdDbObjectId::convertToRedirectedId() {
  OdDbIdRecord* idRecord = redirected(m_idRecord);
  if (idRecord == m_idRecord) return false;
  m_idRecord = idRecord;
  return true;
}
