// Bringing objects of a drawing into memory and dropping them again.
//
// The idea: an id has its small record from the moment it is first met, and the object joins it at
// the first open. Class and owner of an id come from the header columns of its stored record, which
// need no reading of the object. The mark kLoading ends a read that leads back to its own object:
// the inner open finds no object and gives null.
//
// A proxy is revived at an open while nothing has it open: its record is written from the proxy, as
// base fields may have changed, and read by the class that is registered now. Whether the file
// holds a record of it does not change by that. When the class cannot read the record the proxy
// stays.
//
// An object may be dropped when the file holds its record as it is, it is neither open nor erased,
// and no transient reactor would be lost with it.
#include <string>

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/internal_access.h"
#include "platform/db/object_extra.h"
#include "platform/db/proxy_object.h"
#include "platform/db/reactor_calls.h"

namespace {

OdString describe(const OdDbIdRecord* idRecord, const OdString& className) {
  OdString text = OdString("object ") + OdDbHandle(idRecord->handle).ascii();
  if (!className.isEmpty()) text += OdString(" of class ") + className;
  return text;
}

}  // namespace

void OdDbDatabaseImpl::noteDamage(OdDbIdRecord* idRecord, const OdString& text) {
  if (!idRecord->has(OdDbIdRecord::kUnloadable)) addLoadError(idRecord->handle, text);
  idRecord->set(OdDbIdRecord::kUnloadable);
}

void OdDbDatabaseImpl::fetchHeader(OdDbIdRecord* idRecord) {
  OdUInt32 classId = 0;
  OdUInt64 owner = 0;
  const OdStatus status = store ? store->readRecordHeader(idRecord->handle, classId, owner)
                                : OdStatus{eUnknownHandle, OdString()};
  if (!status.ok()) {
    if (status.code != eUnknownHandle) noteDamage(idRecord, status.text);
    noteAbsent(idRecord);
    return;
  }
  OdDbClassEntry* entry = classes.find(classId);
  OdRxClass* rxClass = entry == nullptr ? nullptr : classes.resolve(*entry);
  idRecord->objectClass = rxClass == nullptr ? OdDbProxyObject::desc() : rxClass;
  idRecord->owner = idOf(owner).idRecord();
  idRecord->set(OdDbIdRecord::kHeaderKnown | OdDbIdRecord::kInFile);
}

OdDbObject* OdDbDatabaseImpl::resident(OdDbIdRecord* idRecord) {
  OdDbObject* object = idRecord->object;
  if (object == nullptr) return loadFromStore(idRecord);
  if ((object->m_bits & OdDbObject::kBitProxy) != 0 && object->m_refs == 0) {
    return reviveProxy(idRecord);
  }
  return object;
}

OdDbObject* OdDbDatabaseImpl::loadFromStore(OdDbIdRecord* idRecord) {
  if (!store || idRecord->has(OdDbIdRecord::kLoading | OdDbIdRecord::kUnloadable |
                              OdDbIdRecord::kAbsent | OdDbIdRecord::kErased)) {
    return nullptr;
  }
  OdDbRecordView record;
  const OdStatus status = store->readRecord(idRecord->handle, record);
  if (!status.ok()) {
    if (status.code == eUnknownHandle) {
      noteAbsent(idRecord);
    } else {
      noteDamage(idRecord, status.text);
    }
    return nullptr;
  }
  // Reading the object may read others through the store, which would end the view.
  const std::vector<OdUInt8> bytes(record.data, record.data + record.size);
  record.data = bytes.data();
  return load(idRecord, record);
}

OdDbObject* OdDbDatabaseImpl::load(OdDbIdRecord* idRecord, const OdDbRecordView& record) {
  const OdDbLoadingMark loading(idRecord);
  try {
    return instantiate(idRecord, record);
  } catch (const std::exception& error) {
    const OdDbClassEntry* entry = classes.find(record.classId);
    noteDamage(idRecord, describe(idRecord, entry == nullptr ? OdString() : entry->name) +
                             " cannot be read: " + OdString(error.what()));
  }
  return nullptr;
}

OdDbObject* OdDbDatabaseImpl::instantiate(OdDbIdRecord* idRecord, const OdDbRecordView& record) {
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
  object->m_idRecord = idRecord;
  idRecord->objectClass = object->isA();
  idRecord->owner = idOf(record.owner).idRecord();
  idRecord->object = object;
  try {
    const OdDbInternalWrite internalWrite(object);
    OdDbFileReader reader(record.data, record.size, self, &resolveHandle, this);
    if (known) {
      const OdResult result = object->dwgInFields(&reader);
      if (result != eOk) throw OdError(result);
    } else {
      static_cast<OdDbProxyObject*>(object)->readRecord(record.classId, reader);
    }
  } catch (...) {
    idRecord->object = nullptr;
    object->m_idRecord = nullptr;
    throw;
  }
  if (!known) object->m_bits |= OdDbObject::kBitProxy;
  idRecord->set(OdDbIdRecord::kHeaderKnown);
  if (store) idRecord->set(OdDbIdRecord::kInFile);
  made.detach()->release();  // resident: the database owns it, and it is not open
  return object;
}

// A proxy whose class has come is read again from its own record.
OdDbObject* OdDbDatabaseImpl::reviveProxy(OdDbIdRecord* idRecord) {
  auto* proxy = static_cast<OdDbProxyObject*>(idRecord->object);
  OdDbClassEntry* entry = classes.find(proxy->classId());
  if (entry == nullptr || idRecord->has(OdDbIdRecord::kLoading) ||
      classes.resolve(*entry) == nullptr) {
    return proxy;
  }
  std::vector<OdUInt8> bytes;
  {
    const OdDbInternalRead readable(proxy);
    proxy->writeRecord(bytes);
  }
  const OdDbRecordView record{idRecord->handle, proxy->classId(),
                              idRecord->owner == nullptr ? 0 : idRecord->owner->handle,
                              bytes.data(), bytes.size()};
  const bool inFile = idRecord->has(OdDbIdRecord::kInFile);
  OdDbObject* object = load(idRecord, record);
  if (!inFile) idRecord->clear(OdDbIdRecord::kInFile);
  if (object == nullptr) {
    idRecord->object = proxy;
    idRecord->objectClass = OdDbProxyObject::desc();
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

OdStatus OdDbDatabaseImpl::loadAll() {
  if (!store) return {};
  const OdUInt32 errorsBefore = loadErrors.size();
  OdStatus status = store->readAll([this](const OdDbRecordView& record) {
    OdDbIdRecord* idRecord = ids.findOrCreate(record.handle);
    if (idRecord->object == nullptr &&
        !idRecord->has(OdDbIdRecord::kErased | OdDbIdRecord::kDirty)) {
      load(idRecord, record);
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
  const OdStatus status =
      store->listRecords([this](OdUInt64 handle, OdUInt32 classId, OdUInt64 owner, std::size_t) {
        OdDbIdRecord* idRecord = ids.findOrCreate(handle);
        if (idRecord->has(OdDbIdRecord::kHeaderKnown)) return true;
        OdDbClassEntry* entry = classes.find(classId);
        OdRxClass* rxClass = entry == nullptr ? nullptr : classes.resolve(*entry);
        idRecord->objectClass = rxClass == nullptr ? OdDbProxyObject::desc() : rxClass;
        idRecord->owner = idOf(owner).idRecord();
        idRecord->set(OdDbIdRecord::kHeaderKnown | OdDbIdRecord::kInFile);
        return true;
      });
  if (!status.ok()) {
    addLoadError(0, status.text);
    return;
  }
  allListed = true;
}

OdDbObjectId OdDbDatabaseImpl::append(OdDbObject* object, OdDbIdRecord* ownerRecord,
                                      OdUInt64 handle) {
  if (object == nullptr) throw OdError(eInvalidInput, OdString("null object"));
  if (object->m_idRecord != nullptr) {
    throw OdError(eAlreadyInDatabase, OdString("object ") + object->getDbHandle().ascii());
  }
  if (readOnly) throw OdError(eReadOnlyDatabase, filename);
  if (object->isA() == nullptr) throw OdError(eClassNotRegistered, OdString("object to be added"));
  if (handle == 0) handle = seed;
  OdDbIdRecord* idRecord = ids.findOrCreate(handle);
  if (handle != seed) ensureHeader(idRecord);
  if (idRecord->has(OdDbIdRecord::kHeaderKnown)) {
    throw OdError(eHandleInUse, OdDbHandle(handle).ascii());
  }
  if (handle >= seed) seed = handle + 1;
  if (ownerRecord == nullptr && object->m_extra) ownerRecord = object->m_extra->pendingOwner;
  idRecord->owner = ownerRecord;
  idRecord->objectClass = object->isA();
  idRecord->object = object;
  idRecord->flags = OdDbIdRecord::kHeaderKnown;
  object->m_idRecord = idRecord;
  ++object->m_upgrades;  // its maker fills it until the last pointer closes it
  undo.recordCreated(idRecord);
  markDirty(idRecord);
  tellDatabaseReactors(
      [this, object](OdDbDatabaseReactor* reactor) { reactor->objectAppended(self, object); });
  return OdDbObjectId(idRecord);
}

void OdDbDatabaseImpl::forgetUncreated(OdDbIdRecord* idRecord) {
  OdDbObject* object = idRecord->object;
  if (object == nullptr || !idRecord->has(OdDbIdRecord::kUnappended) || object->m_refs > 0) return;
  idRecord->object = nullptr;
  delete object;
}

void OdDbDatabaseImpl::setErased(OdDbIdRecord* idRecord, bool erased) {
  if (erased) {
    idRecord->set(OdDbIdRecord::kErased);
    anyErased = true;
  } else {
    idRecord->clear(OdDbIdRecord::kErased);
  }
  markDirty(idRecord);
  OdDbObject* object = idRecord->object;
  if (object == nullptr) return;
  object->subExistenceChanged();
  OdDbReactorCalls::tell<const OdDbObject*, bool>(object, &OdDbObject::erased,
                                                  &OdDbObjectReactor::erased, object, erased);
  tellDatabaseReactors([this, object, erased](OdDbDatabaseReactor* reactor) {
    reactor->objectErased(self, object, erased);
  });
}

OdUInt64 OdDbDatabaseImpl::pageOut(OdUInt64 budgetBytes) {
  if (!store) return 0;
  OdUInt64 total = 0;
  const auto droppable = [](const OdDbIdRecord* idRecord) {
    const OdDbObject* object = idRecord->object;
    if (object == nullptr || object->m_refs > 0 || !idRecord->has(OdDbIdRecord::kInFile)) {
      return false;
    }
    if (idRecord->has(OdDbIdRecord::kDirty | OdDbIdRecord::kErased | OdDbIdRecord::kLoading)) {
      return false;
    }
    if (object->hasStateOutsideFile()) return false;
    if (!object->m_extra) return true;
    for (const auto& reactor : object->m_extra->reactors) {
      if (reactor.transient != nullptr) return false;
    }
    return true;
  };
  ids.forEach([&total](const OdDbIdRecord* idRecord) {
    if (idRecord->object != nullptr) total += idRecord->object->approximateSize();
    return true;
  });
  OdUInt64 dropped = 0;
  ids.forEach([&](OdDbIdRecord* idRecord) {
    if (total <= budgetBytes) return false;
    if (!droppable(idRecord)) return true;
    total -= idRecord->object->approximateSize();
    delete idRecord->object;
    idRecord->object = nullptr;
    ++dropped;
    return true;
  });
  return dropped;
}
