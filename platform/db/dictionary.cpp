// OdDbDictionary: entries, their undo steps, filing.
#include "platform/db/dictionary.h"

#include <string>
#include <utility>

#include "platform/base/error.h"
#include "platform/db/database.h"

OD_RX_DEFINE_DB(OdDbDictionary, OdDbObject, L"OdDbDictionary", 0, 0, 0, L"DICTIONARY", OdString())
OD_RX_DEFINE_ABSTRACT(OdDbDictionaryIterator, OdRxObject, L"OdDbDictionaryIterator")

namespace {

constexpr OdUInt8 kVersion = 1;

// Partial undo steps. Each is what stood there before, so that applying one files its own inverse.
enum Step : OdUInt8 {
  kEntryStep = 1,  ///< name (string), id (soft pointer; null: there was no entry)
  kFlagsStep = 2,  ///< hard (bool), merge style (uint8)
};

bool isMergeStyle(OdInt32 number) {
  return number >= OdDb::kDrcNotApplicable && number <= OdDb::kDrcUnmangleName;
}

OdString dictionaryText(const OdDbObject* dictionary) {
  return OdString("dictionary ") + dictionary->getDbHandle().ascii();
}

}  // namespace

// ---- Iterator

class OdDbDictionary::Iterator : public OdDbDictionaryIterator {
 public:
  explicit Iterator(const OdDbDictionary* dictionary)
      : m_dictionary(dictionary), m_walker(dictionary->m_entries, /*skipErased=*/true) {}

  [[nodiscard]] bool done() const override { return m_walker.done(); }
  bool next() override {
    m_walker.step(true);
    return !m_walker.done();
  }
  bool setPosition(const OdDbObjectId& id) override { return !id.isErased() && m_walker.seek(id); }
  [[nodiscard]] OdString name() const override { return m_walker.name(); }
  [[nodiscard]] OdDbObjectId objectId() const override { return m_walker.id(); }

 private:
  OdSmartPtr<OdDbDictionary> m_dictionary;  // keeps it open
  OdDbNamedIdsWalker m_walker;
};

OdDbObjectPtr OdDbDictionaryIterator::getObject(OdDb::OpenMode mode) const {
  return objectId().openObject(mode);
}

OdDbDictionaryIteratorPtr OdDbDictionary::newIterator() const {
  assertReadEnabled();
  return OdRxObjectImpl<Iterator>::createObject(this);
}

// ---- Queries

OdDbObjectId OdDbDictionary::getAt(const OdString& name, OdResult* status) const {
  assertReadEnabled();
  const OdDbNamedId* entry = m_entries.find(name);
  const bool found = entry != nullptr && !entry->id.isErased();
  if (status != nullptr) *status = found ? eOk : eKeyNotFound;
  return found ? entry->id : OdDbObjectId::kNull;
}

OdDbObjectPtr OdDbDictionary::getAt(const OdString& name, OdDb::OpenMode mode) const {
  return getAt(name).openObject(mode);
}

bool OdDbDictionary::has(const OdDbObjectId& id) const {
  assertReadEnabled();
  return !id.isErased() && m_entries.findId(id) != nullptr;
}

OdString OdDbDictionary::nameAt(const OdDbObjectId& id) const {
  assertReadEnabled();
  const OdDbNamedId* entry = id.isErased() ? nullptr : m_entries.findId(id);
  return entry == nullptr ? OdString() : entry->name;
}

OdUInt32 OdDbDictionary::numEntries() const {
  assertReadEnabled();
  return m_entries.numLive();
}

bool OdDbDictionary::isEmpty() const {
  assertReadEnabled();
  return !m_entries.hasLive();
}

bool OdDbDictionary::isTreatElementsAsHard() const { return read(m_hard); }

OdDb::DuplicateRecordCloning OdDbDictionary::mergeStyle() const { return read(m_mergeStyle); }

// ---- Edits

void OdDbDictionary::putEntry(const OdString& name, const OdDbObjectId& id) {
  if (OdDbDwgFiler* filer = beginPartialUndo(desc())) {
    filer->wrUInt8(kEntryStep);
    m_entries.outStep(filer, name);
  }
  m_entries.put(name, id);
}

void OdDbDictionary::checkNew(const OdString& name, const OdDbObject* object) const {
  if (name.isEmpty()) throw OdError(eInvalidKey, OdString("empty name in ") + dictionaryText(this));
  if (object == nullptr) {
    throw OdError(eNullPointer, OdString("object for '") + name + "' in " + dictionaryText(this));
  }
  if (database() == nullptr) {
    throw OdError(eNoDatabase, OdString("dictionary that is to take '") + name + "'");
  }
  if (object->database() == nullptr) return;
  if (object->database() != database()) {
    throw OdError(eWrongDatabase, OdString("object ") + object->getDbHandle().ascii() + " for '" +
                                      name + "' in " + dictionaryText(this));
  }
  const OdDbNamedId* entry = m_entries.findId(object->objectId());
  if (entry != nullptr && !entry->name.iEquals(name)) {
    throw OdError(eDuplicateKey, OdString("object ") + object->getDbHandle().ascii() + " is '" +
                                     entry->name + "' in " + dictionaryText(this) +
                                     ", wanted as '" + name + "'");
  }
}

OdDbObjectId OdDbDictionary::setAt(const OdString& name, OdDbObject* object) {
  checkNew(name, object);
  assertWriteEnabled(/*autoUndo=*/false);
  if (object->database() == nullptr) {
    database()->addOdDbObject(object, objectId());
  } else if (object->ownerId() != objectId()) {
    object->setOwnerId(objectId());
  }
  const OdDbObjectId id = object->objectId();
  const OdDbNamedId* present = m_entries.find(name);
  const OdDbObjectId replaced = present == nullptr ? OdDbObjectId::kNull : present->id;
  if (replaced != id || present->name != name) putEntry(name, id);
  if (replaced != id) eraseReplaced(replaced);
  return id;
}

OdDbObjectId OdDbDictionary::setAt(const OdString& name, const OdDbObjectId& id) {
  if (id.ownerId() == objectId() && !objectId().isNull()) {
    return setAt(name, id.safeOpenObject(OdDb::kForRead).get());
  }
  return setAt(name, id.safeOpenObject(OdDb::kForWrite).get());
}

void OdDbDictionary::eraseReplaced(const OdDbObjectId& id) {
  if (id.isErased()) return;
  const OdDbObjectPtr old = id.openObject(OdDb::kForWrite);
  if (!old.isNull()) old->erase();
}

OdDbObjectId OdDbDictionary::remove(const OdString& name) {
  assertReadEnabled();
  const OdDbNamedId* entry = m_entries.find(name);
  if (entry == nullptr) return OdDbObjectId::kNull;
  const OdDbObjectId id = entry->id;
  assertWriteEnabled(/*autoUndo=*/false);
  putEntry(name, OdDbObjectId::kNull);
  return id;
}

bool OdDbDictionary::remove(const OdDbObjectId& id) {
  assertReadEnabled();
  const OdDbNamedId* entry = m_entries.findId(id);
  return entry != nullptr && !remove(OdString(entry->name)).isNull();
}

bool OdDbDictionary::setName(const OdString& oldName, const OdString& newName) {
  const OdDbObjectId id = getAt(oldName);
  if (id.isNull() || newName.isEmpty()) return false;
  const OdDbObjectId other = getAt(newName);
  if (!other.isNull() && other != id) return false;
  assertWriteEnabled(/*autoUndo=*/false);
  if (other.isNull()) putEntry(OdString(oldName), OdDbObjectId::kNull);
  putEntry(newName, id);
  return true;
}

void OdDbDictionary::setTreatElementsAsHard(bool hard) { changeFlags(hard, m_mergeStyle); }

void OdDbDictionary::setMergeStyle(OdDb::DuplicateRecordCloning style) {
  if (!isMergeStyle(style)) {
    throw OdError(eInvalidInput, OdString("merge style " + std::to_string(style)));
  }
  changeFlags(m_hard, style);
}

void OdDbDictionary::changeFlags(bool hard, OdDb::DuplicateRecordCloning style) {
  if (hard == m_hard && style == m_mergeStyle) return;
  assertWriteEnabled(/*autoUndo=*/false);
  if (OdDbDwgFiler* filer = beginPartialUndo(desc())) {
    filer->wrUInt8(kFlagsStep);
    filer->wrBool(m_hard);
    filer->wrUInt8(static_cast<OdUInt8>(m_mergeStyle));
  }
  m_hard = hard;
  m_mergeStyle = style;
}

void OdDbDictionary::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  assertWriteEnabled(/*autoUndo=*/false);
  const OdUInt8 step = filer->rdUInt8();
  if (step == kEntryStep) {
    const OdDbNamedId entry = OdDbNamedIds::inStep(filer);
    putEntry(entry.name, entry.id);
  } else if (step == kFlagsStep) {
    const bool hard = filer->rdBool();
    changeFlags(hard, static_cast<OdDb::DuplicateRecordCloning>(filer->rdUInt8()));
  } else {
    throw OdError(eCorruptData,
                  OdString("undo step " + std::to_string(step) + " of ") + dictionaryText(this));
  }
}

OdResult OdDbDictionary::subErase(bool erasing) {
  const OdUInt64 handle = getDbHandle();
  if (handle == OdDbRootHandles::kNamedObjectsDictionary) return eInvalidInput;
  return OdDbObject::subErase(erasing);
}

// ---- Filing
//
//   version       uint8     1
//   hard          bool      elements are owned hard
//   merge style   uint8     OdDb::DuplicateRecordCloning
//   entries       int32 count, then per entry, in the order of the folded names:
//     name        string    not empty; each once
//     element     soft or hard ownership, as `hard` says

void OdDbDictionary::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbObject::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  filer->wrBool(m_hard);
  filer->wrUInt8(static_cast<OdUInt8>(m_mergeStyle));
  m_entries.dwgOut(filer, elementReference());
}

OdResult OdDbDictionary::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  m_hard = filer->rdBool();
  const OdUInt8 style = filer->rdUInt8();
  if (!isMergeStyle(style)) return eCorruptData;
  m_mergeStyle = static_cast<OdDb::DuplicateRecordCloning>(style);
  return m_entries.dwgIn(filer, elementReference());
}

// Groups: 280 hard, 281 merge style, then 3 name and 350 (soft) or 360 (hard) element per entry.

void OdDbDictionary::dxfOutFields(OdDbDxfFiler* filer) const {
  OdDbObject::dxfOutFields(filer);
  filer->wrUInt8(280, m_hard ? 1 : 0);
  filer->wrUInt8(281, static_cast<OdUInt8>(m_mergeStyle));
  const int code = m_hard ? 360 : 350;
  m_entries.entries().forEach([filer, code](const OdDbNamedId& entry) {
    if (entry.id.isErased()) return;
    filer->wrString(3, entry.name);
    filer->wrObjectId(code, entry.id);
  });
}

OdResult OdDbDictionary::dxfInFields(OdDbDxfFiler* filer) {
  const OdResult result = OdDbObject::dxfInFields(filer);
  if (result != eOk) return result;
  m_entries.clear();
  OdString name;
  while (!filer->atEOF()) {
    const int code = filer->nextItem();
    if (code == 280) {
      m_hard = filer->rdUInt8() != 0;
    } else if (code == 281) {
      const OdUInt8 style = filer->rdUInt8();
      if (!isMergeStyle(style)) return eCorruptData;
      m_mergeStyle = static_cast<OdDb::DuplicateRecordCloning>(style);
    } else if (code == 3) {
      name = filer->rdString();
    } else if (code == 350 || code == 360) {
      if (name.isEmpty() || m_entries.find(name) != nullptr) return eCorruptData;
      m_entries.put(name, filer->rdObjectId());
      name.empty();
    } else {
      filer->pushBackItem();
      break;
    }
  }
  return eOk;
}

std::size_t OdDbDictionary::approximateSize() const {
  return OdDbObject::approximateSize() + m_entries.memoryUsed();
}
