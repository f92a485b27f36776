// OdDbObject: base fields, extended data, extension dictionary.
#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/db_object.h"
#include "platform/db/dictionary.h"
#include "platform/db/object_extra.h"
#include "platform/db/regapp_table.h"
#include "platform/filer/memory_filer.h"

namespace {

// Base fields, ahead of those of every class:
//
//   owner        soft pointer   undo and page filers only
//   parts        uint8          bit 0 reactors, bit 1 extension dictionary, bit 2 extended data
//   reactors     int32 count, then soft pointers, in order of attachment       with bit 0
//   dictionary   hard ownership                                                with bit 1
//   xdata        result buffer chain                                           with bit 2
//
// Copy filers take extended data alone: reactors and the dictionary belong to the source.
enum BaseParts : OdUInt8 { kReactors = 1, kExtensionDictionary = 2, kExtendedData = 4 };
constexpr OdUInt8 kKnownParts = kReactors | kExtensionDictionary | kExtendedData;

bool filesOwner(const OdDbDwgFiler* filer) {
  return filer->filerType() == OdDbDwgFiler::kUndoFiler ||
         filer->filerType() == OdDbDwgFiler::kPageFiler;
}

bool isAppHeader(const OdResBuf* element) { return element->restype() == OdResBuf::kDxfRegAppName; }

// Chain without the part that belongs to `appName`; elements are shared with the chain given.
OdResBufPtr withoutApp(const OdResBufPtr& chain, const OdString& appName) {
  OdResBufPtr first;
  OdResBufPtr last;
  bool dropping = false;
  for (OdResBufPtr element = chain; !element.isNull();) {
    OdResBufPtr next = element->next();
    if (isAppHeader(element.get())) dropping = element->getString().iEquals(appName);
    if (!dropping) {
      if (first.isNull()) {
        first = element;
      } else {
        last->setNext(element.get());
      }
      last = element;
    }
    element = next;
  }
  if (!last.isNull()) last->setNext(nullptr);
  return first;
}

// Copy of the elements from `header` up to the next application's header.
OdResBufPtr copyApp(const OdResBuf* header) {
  OdResBufPtr first = OdResBuf::newRb(OdResBuf::kDxfRegAppName, header->getString());
  OdResBufPtr last = first;
  for (OdResBufPtr element = header->next(); !element.isNull() && !isAppHeader(element.get());
       element = element->next()) {
    OdResBufPtr copy = element->copyElement();
    last->setNext(copy.get());
    last = copy;
  }
  return first;
}

}  // namespace

// Filing.

void OdDbObject::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  if (filesOwner(filer)) filer->wrSoftPointerId(ownerId());
  writeExtra(filer);
}

OdResult OdDbObject::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  if (filesOwner(filer)) {
    const OdDbObjectId owner = filer->rdSoftPointerId();
    if (m_idRecord != nullptr) m_idRecord->owner = owner.idRecord();
  }
  return readExtra(filer);
}

void OdDbObject::writeExtra(OdDbDwgFiler* filer) const {
  const bool copying = filer->filerType() == OdDbDwgFiler::kCopyFiler;
  OdDbObjectIdArray reactors;
  OdUInt8 parts = 0;
  if (m_extra) {
    if (!copying) {
      for (const Extra::Reactor& entry : m_extra->reactors) {
        if (entry.persistent != nullptr) reactors.append(OdDbObjectId(entry.persistent));
      }
      if (!reactors.isEmpty()) parts |= kReactors;
      if (m_extra->extensionDictionary != nullptr) parts |= kExtensionDictionary;
    }
    if (!m_extra->xdata.isNull()) parts |= kExtendedData;
  }
  filer->wrUInt8(parts);
  if ((parts & kReactors) != 0) {
    filer->wrInt32(static_cast<OdInt32>(reactors.size()));
    const OdDbObjectIdArray& filed = reactors;
    for (const OdDbObjectId& id : filed) filer->wrSoftPointerId(id);
  }
  if ((parts & kExtensionDictionary) != 0) {
    filer->wrHardOwnershipId(OdDbObjectId(m_extra->extensionDictionary));
  }
  if ((parts & kExtendedData) != 0) OdResBuf::dwgOutChain(filer, m_extra->xdata.get());
}

OdResult OdDbObject::readExtra(OdDbDwgFiler* filer) {
  const OdUInt8 parts = filer->rdUInt8();
  if ((parts & ~kKnownParts) != 0) return eCorruptData;
  if (m_extra) {
    std::erase_if(m_extra->reactors,
                  [](const Extra::Reactor& entry) { return entry.persistent != nullptr; });
    m_extra->extensionDictionary = nullptr;
    m_extra->xdata = nullptr;
  }
  if ((parts & kReactors) != 0) {
    const OdUInt32 count = filer->rdCount();
    for (OdUInt32 i = 0; i < count; ++i) {
      const OdDbObjectId reactor = filer->rdSoftPointerId();
      if (!reactor.isNull()) extra().reactors.push_back({reactor.idRecord(), nullptr});
    }
  }
  if ((parts & kExtensionDictionary) != 0) {
    const OdDbObjectId dictionary = filer->rdHardOwnershipId();
    if (!dictionary.isNull()) extra().extensionDictionary = dictionary.idRecord();
  }
  if ((parts & kExtendedData) != 0) extra().xdata = OdResBuf::dwgInChain(filer);
  return eOk;
}

void OdDbObject::dxfOutFields(OdDbDxfFiler*) const { assertReadEnabled(); }

OdResult OdDbObject::dxfInFields(OdDbDxfFiler*) {
  assertWriteEnabled();
  return eOk;
}

void OdDbObject::copyFrom(const OdRxObject* source) {
  const OdSmartPtr<OdDbObject> other = OdDbObject::cast(source);
  if (other.isNull() || other->isA() != isA()) {
    throw OdError_NotThatKindOfClass(
        source == nullptr || source->isA() == nullptr ? OdString("null") : source->isA()->name(),
        isA()->name());
  }
  OdDbFilerBuffer buffer;
  OdDbMemoryFiler filer(OdDbDwgFiler::kCopyFiler, buffer, database());
  other->dwgOutFields(&filer);
  filer.startReading(0, 0);
  const OdResult result = dwgInFields(&filer);
  if (result != eOk) throw OdError(result, OdString("copying a ") + isA()->name());
}

void OdDbObject::applyPartialUndo(OdDbDwgFiler*, OdRxClass* cls) {
  throw OdError(eNotThatKindOfClass, OdString("partial undo of class ") +
                                         (cls == nullptr ? OdString("null") : cls->name()) +
                                         " on object " + getDbHandle().ascii() + " of class " +
                                         isA()->name());
}

std::size_t OdDbObject::approximateSize() const {
  constexpr std::size_t kTypicalObject = 256;
  return m_extra ? kTypicalObject + sizeof(Extra) : kTypicalObject;
}

// Extended data.

bool OdDbObject::hasXData() const {
  assertReadEnabled();
  return m_extra && !m_extra->xdata.isNull();
}

OdResBufPtr OdDbObject::xData(const OdString& appName) const {
  assertReadEnabled();
  if (!m_extra || m_extra->xdata.isNull()) return OdResBufPtr();
  if (appName.isEmpty()) return m_extra->xdata->copyChain();
  for (OdResBufPtr element = m_extra->xdata; !element.isNull(); element = element->next()) {
    if (isAppHeader(element.get()) && element->getString().iEquals(appName)) {
      return copyApp(element.get());
    }
  }
  return OdResBufPtr();
}

void OdDbObject::setXData(const OdResBuf* chain) {
  if (chain == nullptr) return;
  if (!isAppHeader(chain)) {
    throw OdError(eInvalidInput, OdString("extended data starts with code ") +
                                     OdString().format(L"%d", chain->restype()) + ", not 1001");
  }
  for (OdResBufPtr element = chain; !element.isNull(); element = element->next()) {
    if (!isAppHeader(element.get()) || database() == nullptr) continue;
    const OdDbObjectPtr table = database()->getRegAppTableId().safeOpenObject();
    if (!OdDbRegAppTable::cast(table)->has(element->getString())) {
      throw OdError(eKeyNotFound, OdString("registered application ") + element->getString());
    }
  }
  assertWriteEnabled();
  OdResBufPtr kept = extra().xdata;
  for (OdResBufPtr element = chain; !element.isNull(); element = element->next()) {
    if (!isAppHeader(element.get())) continue;
    kept = withoutApp(kept, element->getString());
    const OdResBufPtr added = copyApp(element.get());
    if (added->next().isNull()) continue;
    if (kept.isNull()) {
      kept = added;
    } else {
      kept->last()->setNext(added.get());
    }
  }
  m_extra->xdata = kept;
  if (m_idRecord != nullptr) m_bits |= kBitXDataModified;
}

// Extension dictionary.

OdDbObjectId OdDbObject::extensionDictionary() const {
  assertReadEnabled();
  const OdDbObjectId id(m_extra ? m_extra->extensionDictionary : nullptr);
  return id.isErased() ? OdDbObjectId::kNull : id;
}

OdDbObjectId OdDbObject::createExtensionDictionary() {
  const OdDbObjectId present = extensionDictionary();
  if (!present.isNull()) return present;
  if (m_idRecord == nullptr) throw OdError(eNoDatabase, OdString("extension dictionary"));
  assertWriteEnabled();
  const OdSmartPtr<OdDbDictionary> dictionary = OdDbDictionary::createObject();
  dictionary->setTreatElementsAsHard(true);
  const OdDbObjectId id = database()->addOdDbObject(dictionary.get(), objectId());
  extra().extensionDictionary = id.idRecord();
  return id;
}

bool OdDbObject::releaseExtensionDictionary() {
  const OdDbObjectId id = extensionDictionary();
  if (id.isNull()) return false;
  const OdSmartPtr<OdDbDictionary> dictionary = id.openAs<OdDbDictionary>(OdDb::kForWrite);
  if (dictionary.isNull() || dictionary->numEntries() != 0) return false;
  assertWriteEnabled();
  dictionary->erase();
  m_extra->extensionDictionary = nullptr;
  return true;
}
