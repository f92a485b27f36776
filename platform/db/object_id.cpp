// OdDbObjectId: what needs the database behind the id.
#include "platform/filer/object_id.h"

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/proxy_object.h"

namespace {

constexpr int kMaxRedirections = 16;    // a chain longer than this is a cycle
constexpr int kMaxOwnerDepth = 100000;  // likewise for owners in a damaged drawing

OdDbStub* redirected(OdDbStub* stub) {
  for (int i = 0; i < kMaxRedirections && stub != nullptr && stub->has(OdDbStub::kRedirected);
       ++i) {
    stub = stub->owner;
  }
  return stub;
}

/// Why an object could not be opened; eOk when it was.
OdResult open(OdDbStub* stub, OdDb::OpenMode mode, bool openErased, OdDbObject*& object) {
  stub = redirected(stub);
  if (stub == nullptr) return eNullObjectId;
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(stub);
  object = impl.resident(stub);
  if (object == nullptr) return stub->has(OdDbStub::kUnloadable) ? eCorruptData : eUnknownHandle;
  if (stub->has(OdDbStub::kErased)) {
    if (stub->has(OdDbStub::kUnappended) || !openErased) return eWasErased;
  }
  if (mode == OdDb::kForWrite) {
    if (impl.readOnly) return eReadOnlyDatabase;
    if (object->isNotifyEnabled()) return eWasOpenForNotify;
  }
  return eOk;
}

}  // namespace

OdDbObjectPtr OdDbObjectId::openObject(OdDb::OpenMode mode, bool openErased) const {
  OdDbObject* object = nullptr;
  if (open(m_stub, mode, openErased, object) != eOk) return OdDbObjectPtr();
  if (mode == OdDb::kForRead) return OdDbObjectPtr(object);
  object->addRefTagged(static_cast<unsigned>(mode));
  if (mode == OdDb::kForWrite) object->writeOpened();
  return OdDbObjectPtr::attachTagged(object, static_cast<unsigned>(mode));
}

OdDbObjectPtr OdDbObjectId::safeOpenObject(OdDb::OpenMode mode, bool openErased) const {
  OdDbObject* object = nullptr;
  const OdResult result = open(m_stub, mode, openErased, object);
  if (result != eOk) throw OdError(result, OdString("object ") + getHandle().ascii());
  return openObject(mode, openErased);
}

bool OdDbObjectId::isValid() const {
  OdDbStub* stub = redirected(m_stub);
  if (stub == nullptr) return false;
  OdDbDatabaseImpl::of(stub).ensureHeader(stub);
  return stub->has(OdDbStub::kHeaderKnown);
}

bool OdDbObjectId::isErased() const {
  OdDbStub* stub = redirected(m_stub);
  return stub == nullptr || stub->has(OdDbStub::kErased) || !isValid();
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
  const OdDbStub* stub = redirected(m_stub);
  return stub == nullptr ? nullptr : stub->database;
}

OdRxClass* OdDbObjectId::objectClass() const {
  OdDbStub* stub = redirected(m_stub);
  if (stub == nullptr) return nullptr;
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(stub);
  if (stub->object == nullptr && stub->objectClass == OdDbProxyObject::desc() &&
      stub->objectClass != nullptr) {
    stub->clear(OdDbStub::kHeaderKnown);  // the class may have been registered since
  }
  impl.ensureHeader(stub);
  return stub->objectClass;
}

OdDbObjectId OdDbObjectId::ownerId() const {
  OdDbStub* stub = redirected(m_stub);
  if (stub == nullptr) return kNull;
  OdDbDatabaseImpl::of(stub).ensureHeader(stub);
  return OdDbObjectId(stub->owner);
}

bool OdDbObjectId::convertToRedirectedId() {
  OdDbStub* stub = redirected(m_stub);
  if (stub == m_stub) return false;
  m_stub = stub;
  return true;
}
