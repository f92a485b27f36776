// Finding, making and deleting of objects in dictionaries.
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_dictionary_utils";

OdDbDictionaryPtr openDictionary(const OdDbObjectId& id, OdDb::OpenMode mode = OdDb::kForRead) {
  return id.openObject(mode);  // raises when it is of another class
}

OdDbObjectId entryOf(const OdDbObjectId& dictionaryId, const OdString& name) {
  const OdDbDictionaryPtr dictionary = openDictionary(dictionaryId);
  return dictionary.isNull() ? OdDbObjectId::kNull : dictionary->getAt(name);
}

OdDbObjectId addEntry(const OdDbObjectId& dictionaryId, const OdString& name, OdDbObject* object) {
  const OdDbDictionaryPtr dictionary = dictionaryId.safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
  return dictionary->setAt(name, object);
}

OdDbObjectId findOrAddDictionary(const OdDbObjectId& parentId, const OdString& name) {
  const OdDbObjectId present = entryOf(parentId, name);
  return present.isNull() ? addEntry(parentId, name, OdDbDictionary::createObject()) : present;
}

OdDbObjectPtr createDbObject(const OdRxClass* cls) {
  OdDbObjectPtr object = cls->create();  // raises when it is no database object
  if (object.isNull()) throw OdError_NotThatKindOfClass(cls->name(), OdDbObject::desc()->name());
  return object;
}

OdDbObjectId findExtensionDictionary(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject();
  return object.isNull() ? OdDbObjectId::kNull : object->extensionDictionary();
}

OdDbObjectId findOrAddExtensionDictionary(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject();
  if (object.isNull()) return OdDbObjectId::kNull;
  if (const OdDbObjectId present = object->extensionDictionary(); !present.isNull()) return present;
  const VdmOpenUpgrade upgrade(object);
  return object->createExtensionDictionary();
}

// A parent without an owner is the named objects dictionary.
OdDbObjectId findParent(const OdDbDatabase* database, const OdDbObjectId& owner) {
  return owner.isNull() ? database->getNamedObjectsDictionaryId() : findExtensionDictionary(owner);
}

OdDbObjectId findOrAddParent(const OdDbDatabase* database, const OdDbObjectId& owner) {
  return owner.isNull() ? database->getNamedObjectsDictionaryId()
                        : findOrAddExtensionDictionary(owner);
}

void eraseEntries(const OdDbDictionary* dictionary) {
  for (const OdDbDictionaryIteratorPtr it = dictionary->newIterator(); !it->done(); it->next()) {
    const OdDbObjectPtr object = it->getObject(OdDb::kForWrite);
    if (!object.isNull()) object->erase();
  }
}

// False when there is no dictionary of that name.
bool eraseDictionary(const OdDbObjectId& parentId, const OdString& name) {
  const OdDbDictionaryPtr parent = openDictionary(parentId, OdDb::kForWrite);
  if (parent.isNull()) return false;
  const OdDbDictionaryPtr dictionary = openDictionary(parent->getAt(name), OdDb::kForWrite);
  if (dictionary.isNull()) return false;
  eraseEntries(dictionary);
  dictionary->erase();
  parent->remove(name);
  return true;
}

}  // namespace

namespace vdmu {

OdDbObjectId getObjInExtDict(const OdDbObjectId& id, const OdString& key, const OdRxClass* cls,
                             const OdString* name) {
  if (id.openObject().isNull()) return OdDbObjectId::kNull;
  const OdString dictionaryName = name == nullptr ? kVdmDatabaseKey : *name;
  const OdDbObjectId present = entryOf(entryOf(findExtensionDictionary(id), dictionaryName), key);
  if (!present.isNull() || cls == nullptr) return present;
  const OdDbObjectPtr object = createDbObject(cls);
  return addEntry(findOrAddDictionary(findOrAddExtensionDictionary(id), dictionaryName), key,
                  object);
}

OdDbObjectId getRootObjectByName(OdDbDatabase* database, const OdString& key,
                                 const OdRxClass* cls) {
  if (database == nullptr) return OdDbObjectId::kNull;
  const OdDbObjectId root = database->getNamedObjectsDictionaryId();
  const OdDbObjectId present = entryOf(entryOf(root, kVdmDatabaseKey), key);
  if (!present.isNull() || cls == nullptr) return present;
  const OdDbObjectPtr object = createDbObject(cls);
  return addEntry(findOrAddDictionary(root, kVdmDatabaseKey), key, object);
}

OdDbObjectId createDict(OdDbDatabase* database, const OdString& name, OdDbObjectId owner) {
  if (database == nullptr) return OdDbObjectId::kNull;
  const OdDbObjectId parent = findOrAddParent(database, owner);
  return parent.isNull() ? OdDbObjectId::kNull : findOrAddDictionary(parent, name);
}

OdDbObjectId createNewDict(OdDbDatabase* database, const OdString& name, OdDbObjectId owner) {
  deleteDict(database, name, owner);
  return createDict(database, name, owner);
}

OdDbObjectId getDict(OdDbDatabase* database, const OdString& name, OdDbObjectId owner) {
  return database == nullptr ? OdDbObjectId::kNull : entryOf(findParent(database, owner), name);
}

void deleteDict(OdDbDatabase* database, const OdString& name, OdDbObjectId owner) {
  if (database == nullptr || !eraseDictionary(findParent(database, owner), name)) return;
  if (owner.isNull()) return;
  const OdDbObjectPtr object = owner.safeOpenAs<OdDbObject>();
  const VdmOpenUpgrade upgrade(object);
  object->releaseExtensionDictionary();
}

void swapDictionaries(OdDbDictionary* owner, const OdString& a, const OdString& b,
                      const OdString& tmp) {
  if (owner == nullptr) return;
  owner->setName(b, tmp);
  owner->setName(a, b);
  owner->setName(tmp, a);
  if (owner->has(tmp)) {
    vdmcCallAssert("!pOwnerDict->has(tmpSwapName)", tmp, kSource, __LINE__);
  }
}

}  // namespace vdmu
