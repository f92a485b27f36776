// Bringing objects of a drawing into memory and letting them go again.
#include <string>

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/object_extra.h"
#include "platform/db/proxy_object.h"
#include "platform/db/reactor_calls.h"

namespace {

OdString describe(const OdDbStub* stub, const OdString& className) {
  OdString text = OdString("object ") + OdDbHandle(stub->handle).ascii();
  if (!className.isEmpty()) text += OdString(" of class ") + className;
  return text;
}

}  // namespace

void OdDbDatabaseImpl::noteDamage(OdDbStub* stub, const OdString& text) {
  if (!stub->has(OdDbStub::kUnloadable)) loadErrors.append(text);
  stub->set(OdDbStub::kUnloadable);
}

void OdDbDatabaseImpl::fetchHeader(OdDbStub* stub) {
  OdUInt32 classId = 0;
  OdUInt64 owner = 0;
  const OdDbStoreStatus status = store ? store->readRecordHeader(stub->handle, classId, owner)
                                       : OdDbStoreStatus{eUnknownHandle, OdString()};
  if (!status.ok()) {
    if (status.code != eUnknownHandle) noteDamage(stub, status.text);
    stub->set(OdDbStub::kAbsent);
    return;
  }
  OdDbClassEntry* entry = classes.find(classId);
  OdRxClass* rxClass = entry == nullptr ? nullptr : classes.resolve(*entry);
  stub->objectClass = rxClass == nullptr ? OdDbProxyObject::desc() : rxClass;
  stub->owner = idOf(owner).stub();
  stub->set(OdDbStub::kHeaderKnown | OdDbStub::kInFile);
}

OdDbObject* OdDbDatabaseImpl::resident(OdDbStub* stub) {
  OdDbObject* object = stub->object;
  if (object == nullptr) return loadFromStore(stub);
  if ((object->m_bits & OdDbObject::kBitProxy) != 0 && object->m_refs == 0) {
    return reviveProxy(stub);
  }
  return object;
}

OdDbObject* OdDbDatabaseImpl::loadFromStore(OdDbStub* stub) {
  if (!store || stub->has(OdDbStub::kLoading | OdDbStub::kUnloadable | OdDbStub::kAbsent |
                          OdDbStub::kErased)) {
    return nullptr;
  }
  OdDbRecordView record;
  const OdDbStoreStatus status = store->readRecord(stub->handle, record);
  if (!status.ok()) {
    if (status.code == eUnknownHandle) {
      stub->set(OdDbStub::kAbsent);
    } else {
      noteDamage(stub, status.text);
    }
    return nullptr;
  }
  // Reading the object may read others through the store, which would end the view.
  const std::vector<OdUInt8> bytes(record.data, record.data + record.size);
  record.data = bytes.data();
  return load(stub, record);
}

OdDbObject* OdDbDatabaseImpl::load(OdDbStub* stub, const OdDbRecordView& record) {
  stub->set(OdDbStub::kLoading);
  OdDbObject* object = nullptr;
  try {
    object = instantiate(stub, record);
  } catch (const std::exception& error) {
    const OdDbClassEntry* entry = classes.find(record.classId);
    noteDamage(stub, describe(stub, entry == nullptr ? OdString() : entry->name) +
                         " cannot be read: " + OdString(error.what()));
  }
  stub->clear(OdDbStub::kLoading);
  return object;
}

OdDbObject* OdDbDatabaseImpl::instantiate(OdDbStub* stub, const OdDbRecordView& record) {
  OdDbClassEntry* entry = classes.find(record.classId);
  if (entry == nullptr) {
    throw OdError(eCorruptData,
                  OdString("class number " + std::to_string(record.classId) + ", the drawing has " +
                           std::to_string(classes.entries().size()) + " classes"));
  }
  OdRxClass* rxClass = classes.resolve(*entry);
  const bool known = rxClass != nullptr && !rxClass->isAbstract() &&
                     rxClass->isDerivedFrom(OdDbObject::desc()) &&
                     rxClass != OdDbProxyObject::desc();
  OdRxObjectPtr made = known ? rxClass->create() : OdRxObjectPtr(OdDbProxyObject::createObject());
  auto* object = static_cast<OdDbObject*>(made.get());
  object->m_stub = stub;
  object->m_bits = OdDbObject::kBitInternalWrite;
  stub->objectClass = object->isA();
  stub->owner = idOf(record.owner).stub();
  stub->object = object;
  try {
    OdDbFileReader reader(record.data, record.size, self, &resolveHandle, this);
    if (known) {
      const OdResult result = object->dwgInFields(&reader);
      if (result != eOk) throw OdError(result);
    } else {
      static_cast<OdDbProxyObject*>(object)->readRecord(record.classId, reader);
    }
  } catch (...) {
    stub->object = nullptr;
    object->m_stub = nullptr;
    throw;
  }
  object->m_bits = known ? 0 : OdDbObject::kBitProxy;
  stub->set(OdDbStub::kHeaderKnown);
  if (store) stub->set(OdDbStub::kInFile);
  made.detach()->release();  // resident: the database owns it, and nobody has it open
  return object;
}

// A proxy whose class has come is read again from its own record.
OdDbObject* OdDbDatabaseImpl::reviveProxy(OdDbStub* stub) {
  auto* proxy = static_cast<OdDbProxyObject*>(stub->object);
  OdDbClassEntry* entry = classes.find(proxy->classId());
  if (entry == nullptr || stub->has(OdDbStub::kLoading) || classes.resolve(*entry) == nullptr) {
    return proxy;
  }
  std::vector<OdUInt8> bytes;
  ++proxy->m_refs;
  proxy->writeRecord(bytes);
  --proxy->m_refs;
  const OdDbRecordView record{stub->handle, proxy->classId(),
                              stub->owner == nullptr ? 0 : stub->owner->handle, bytes.data(),
                              bytes.size()};
  const bool inFile = stub->has(OdDbStub::kInFile);
  OdDbObject* object = load(stub, record);
  if (!inFile) stub->clear(OdDbStub::kInFile);
  if (object == nullptr) {
    stub->object = proxy;
    stub->objectClass = OdDbProxyObject::desc();
    return proxy;
  }
  if (proxy->m_extra) {
    for (const auto& reactor : proxy->m_extra->reactors) {
      if (reactor.transient != nullptr) object->addReactor(reactor.transient);
    }
  }
  delete proxy;
  return object;
}

OdDbStoreStatus OdDbDatabaseImpl::loadAll() {
  if (!store) return {};
  const OdUInt32 errorsBefore = loadErrors.size();
  OdDbStoreStatus status = store->readAll([this](const OdDbRecordView& record) {
    OdDbStub* stub = ids.findOrCreate(record.handle);
    if (stub->object == nullptr && !stub->has(OdDbStub::kErased | OdDbStub::kDirty)) {
      load(stub, record);
    }
    return true;
  });
  allListed = allListed || status.ok();
  if (status.ok() && loadErrors.size() > errorsBefore) {
    status = {eCorruptData, loadErrors[errorsBefore]};
  }
  return status;
}

void OdDbDatabaseImpl::listAll() {
  if (allListed || !store) return;
  const OdDbStoreStatus status =
      store->listRecords([this](OdUInt64 handle, OdUInt32 classId, OdUInt64 owner, std::size_t) {
        OdDbStub* stub = ids.findOrCreate(handle);
        if (stub->has(OdDbStub::kHeaderKnown)) return true;
        OdDbClassEntry* entry = classes.find(classId);
        OdRxClass* rxClass = entry == nullptr ? nullptr : classes.resolve(*entry);
        stub->objectClass = rxClass == nullptr ? OdDbProxyObject::desc() : rxClass;
        stub->owner = idOf(owner).stub();
        stub->set(OdDbStub::kHeaderKnown | OdDbStub::kInFile);
        return true;
      });
  if (!status.ok()) {
    loadErrors.append(status.text);
    return;
  }
  allListed = true;
}

OdDbObjectId OdDbDatabaseImpl::append(OdDbObject* object, OdDbStub* ownerStub, OdUInt64 handle) {
  if (object == nullptr) throw OdError(eInvalidInput, OdString("null object"));
  if (object->m_stub != nullptr) {
    throw OdError(eAlreadyInDatabase, OdString("object ") + object->getDbHandle().ascii());
  }
  if (readOnly) throw OdError(eReadOnlyDatabase, filename);
  if (object->isA() == nullptr) throw OdError(eClassNotRegistered, OdString("object to be added"));
  if (handle == 0) handle = seed;
  OdDbStub* stub = ids.findOrCreate(handle);
  if (handle != seed) ensureHeader(stub);
  if (stub->has(OdDbStub::kHeaderKnown)) {
    throw OdError(eHandleInUse, OdDbHandle(handle).ascii());
  }
  if (handle >= seed) seed = handle + 1;
  if (ownerStub == nullptr && object->m_extra) ownerStub = object->m_extra->pendingOwner;
  stub->owner = ownerStub;
  stub->objectClass = object->isA();
  stub->object = object;
  stub->flags = OdDbStub::kHeaderKnown;
  object->m_stub = stub;
  ++object->m_upgrades;  // whoever made it goes on filling it until its last pointer goes
  undo.recordCreated(stub);
  markDirty(stub);
  tellDatabaseReactors(
      [this, object](OdDbDatabaseReactor* reactor) { reactor->objectAppended(self, object); });
  return OdDbObjectId(stub);
}

void OdDbDatabaseImpl::forgetUncreated(OdDbStub* stub) {
  OdDbObject* object = stub->object;
  if (object == nullptr || !stub->has(OdDbStub::kUnappended) || object->m_refs > 0) return;
  stub->object = nullptr;
  delete object;
}

void OdDbDatabaseImpl::setErased(OdDbStub* stub, bool erased) {
  if (erased) {
    stub->set(OdDbStub::kErased);
    anyErased = true;
  } else {
    stub->clear(OdDbStub::kErased);
  }
  markDirty(stub);
  const OdDbObject* object = stub->object;
  if (object == nullptr) return;
  OdDbReactorCalls::tell<const OdDbObject*, bool>(object, &OdDbObject::erased,
                                                  &OdDbObjectReactor::erased, object, erased);
  tellDatabaseReactors([this, object, erased](OdDbDatabaseReactor* reactor) {
    reactor->objectErased(self, object, erased);
  });
}

OdUInt64 OdDbDatabaseImpl::pageOut(OdUInt64 budgetBytes) {
  if (!store) return 0;
  OdUInt64 total = 0;
  const auto droppable = [](const OdDbStub* stub) {
    const OdDbObject* object = stub->object;
    if (object == nullptr || object->m_refs > 0 || !stub->has(OdDbStub::kInFile)) return false;
    if (stub->has(OdDbStub::kDirty | OdDbStub::kErased | OdDbStub::kLoading)) return false;
    if (!object->m_extra) return true;
    for (const auto& reactor : object->m_extra->reactors) {
      if (reactor.transient != nullptr) return false;
    }
    return true;
  };
  ids.forEach([&total](const OdDbStub* stub) {
    if (stub->object != nullptr) total += stub->object->approximateSize();
    return true;
  });
  OdUInt64 dropped = 0;
  ids.forEach([&](OdDbStub* stub) {
    if (total <= budgetBytes) return false;
    if (!droppable(stub)) return true;
    total -= stub->object->approximateSize();
    delete stub->object;
    stub->object = nullptr;
    ++dropped;
    return true;
  });
  return dropped;
}
