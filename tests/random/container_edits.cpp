// Random edits of dictionaries and of what stands in them.
#include <iterator>

#include "platform/db/dictionary.h"
#include "platform/db/xrecord.h"
#include "tests/random/edit_context.h"

namespace {

OdDbDictionaryPtr writableDictionary(OdDbObjectId id) {
  return id.safeOpenAs<OdDbDictionary>(OdDb::kForWrite);
}

// A code of each kind of value, ids of all ways to refer but owning excepted.
OdResBufPtr randomChain(const EditContext& context) {
  RandomSource& random = context.random();
  const OdResBufPtr first = OdResBuf::newRb(1, context.text());
  OdResBufPtr last = first;
  for (std::size_t values = random.below(4); values > 0; --values) {
    OdResBufPtr value;
    switch (random.below(5)) {
      case 0:
        value = OdResBuf::newRb(90, static_cast<OdInt32>(random.next()));
        break;
      case 1:
        value = OdResBuf::newRb(40, random.coordinate());
        break;
      case 2:
        value = OdResBuf::newRb(10, OdGePoint3d(1, random.coordinate(), 0));
        break;
      case 3:
        value = OdResBuf::newRb(330, context.pick(OdDbObject::desc()));
        break;
      default:
        value = OdResBuf::newRb(5, context.pick(OdDbObject::desc()).getHandle());
    }
    last->setNext(value.get());
    last = value;
  }
  return first;
}

bool addXrecord(const EditContext& context) {
  const OdDbXrecordPtr record = OdDbXrecord::createObject();
  record->setFromRbChain(randomChain(context).get());
  writableDictionary(context.pickDictionary())->setAt(context.name(), record);
  return true;
}

bool changeXrecord(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbXrecord::desc());
  if (id.isNull()) return false;
  const OdResBufPtr chain = randomChain(context);
  id.safeOpenAs<OdDbXrecord>(OdDb::kForWrite)->setFromRbChain(chain.get());
  return true;
}

bool addDictionary(const EditContext& context) {
  const OdDbDictionaryPtr dictionary = OdDbDictionary::createObject();
  dictionary->setTreatElementsAsHard(context.random().chance(50));
  writableDictionary(context.pickDictionary())->setAt(context.name(), dictionary);
  return true;
}

// An entry of the dictionary; null when it has none.
OdDbObjectId pickEntry(const EditContext& context, const OdDbDictionaryPtr& dictionary) {
  const OdUInt32 count = dictionary->numEntries();
  if (count == 0) return OdDbObjectId();
  const OdDbDictionaryIteratorPtr entry = dictionary->newIterator();
  for (std::size_t skips = context.random().below(count); skips > 0; --skips) entry->next();
  return entry->objectId();
}

bool renameEntry(const EditContext& context) {
  const OdDbDictionaryPtr dictionary = writableDictionary(context.pickDictionary());
  const OdDbObjectId entry = pickEntry(context, dictionary);
  if (entry.isNull()) return false;
  dictionary->setName(dictionary->nameAt(entry), context.name());
  return true;
}

bool isAtOrBelow(OdDbObjectId id, OdDbObjectId owner) {
  while (!id.isNull() && id != owner) id = id.ownerId();
  return !id.isNull();
}

bool moveEntry(const EditContext& context) {
  const OdDbObjectId target = context.pickDictionary();
  const OdDbDictionaryPtr from = writableDictionary(context.pickDictionary());
  const OdDbObjectId entry = pickEntry(context, from);
  if (entry.isNull() || isAtOrBelow(target, entry)) return false;
  const OdString oldName = from->nameAt(entry);
  const OdString newName = context.name();
  const OdDbDictionaryPtr to = writableDictionary(target);
  // What stands there under the new name would go with all that it owns.
  if (isAtOrBelow(from->objectId(), to->getAt(newName))) return false;
  from->remove(oldName);
  to->setAt(newName, entry);
  return true;
}

bool dropEntry(const EditContext& context) {
  const OdDbDictionaryPtr dictionary = writableDictionary(context.pickDictionary());
  const OdDbObjectId entry = pickEntry(context, dictionary);
  if (entry.isNull()) return false;
  dictionary->remove(entry);
  return entry.safeOpenObject(OdDb::kForWrite)->erase() == eOk;
}

bool fillExtensionDictionary(const EditContext& context) {
  const OdDbObjectPtr object = context.pick(OdDbObject::desc()).safeOpenObject(OdDb::kForWrite);
  const OdDbObjectId id = object->createExtensionDictionary();
  if (context.random().chance(20)) return true;  // stays empty
  const OdDbXrecordPtr record = OdDbXrecord::createObject();
  record->setFromRbChain(randomChain(context).get());
  writableDictionary(id)->setAt(context.name(), record);
  return true;
}

bool releaseExtensionDictionary(const EditContext& context) {
  const OdDbObjectId id = context.pick(OdDbDictionary::desc());
  if (!isExtensionDictionary(id)) return false;
  return id.ownerId().safeOpenObject(OdDb::kForWrite)->releaseExtensionDictionary();
}

constexpr EditRow kRows[] = {
    {"add xrecord", 5, addXrecord},
    {"change xrecord", 4, changeXrecord},
    {"add dictionary", 4, addDictionary},
    {"rename entry", 4, renameEntry},
    {"move entry", 3, moveEntry},
    {"drop entry", 2, dropEntry},
    {"fill extension dictionary", 4, fillExtensionDictionary},
    {"release extension dictionary", 2, releaseExtensionDictionary},
};

}  // namespace

std::span<const EditRow> containerEdits() { return kRows; }
