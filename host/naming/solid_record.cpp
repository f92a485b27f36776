// A binary record in the extension dictionary of a solid.
#include "host/naming/solid_record.h"

#include <cstring>

#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/xrecord.h"

namespace vdm_host {

namespace {

constexpr int kBinary = 310;
constexpr int kSoftPointer = 330;

OdDbXrecordPtr findRecord(const OdDbObjectId& solid, const wchar_t* key) {
  const OdDbObjectPtr object = solid.openObject();
  if (object.isNull()) return {};
  const OdDbDictionaryPtr dictionary = object->extensionDictionary().openAs<OdDbDictionary>();
  if (dictionary.isNull()) return {};
  return dictionary->getAt(key).openAs<OdDbXrecord>(OdDb::kForRead);
}

OdDbXrecordPtr makeRecord(const OdDbObjectId& solid, const wchar_t* key) {
  // Solids of external drawings are not written to: their numbers count as they are.
  const OdDbObjectPtr object = solid.openObject();
  if (object.isNull() || object->database()->isReadOnly()) return {};
  const OdDbOpenUpgrade upgrade(object);
  const OdDbDictionaryPtr dictionary =
      object->createExtensionDictionary().openAs<OdDbDictionary>(OdDb::kForWrite);
  if (dictionary.isNull()) return {};
  OdDbXrecordPtr record = OdDbXrecord::createObject();
  dictionary->setAt(key, record);
  return record;
}

}  // namespace

bool SolidRecord::readFrom(const OdDbObjectId& solid, const wchar_t* key) {
  const OdDbXrecordPtr record = findRecord(solid, key);
  if (record.isNull()) return false;
  OdResBufPtr chain = record->rbChain();
  if (chain.isNull() || chain->restype() != kBinary) return false;
  const OdBinaryData& data = chain->getBinaryChunk();
  const auto* first = reinterpret_cast<const char*>(data.asArrayPtr());
  bytes.assign(first, first + data.size());
  pointers.clear();
  for (chain = chain->next(); !chain.isNull(); chain = chain->next()) {
    if (chain->restype() == kSoftPointer) pointers.append(chain->getObjectId());
  }
  return true;
}

void SolidRecord::writeTo(const OdDbObjectId& solid, const wchar_t* key) const {
  SolidRecord present;
  const bool isThere = present.readFrom(solid, key);
  if (isThere && present.bytes == bytes && present.pointers == pointers) return;
  OdDbXrecordPtr record = findRecord(solid, key);
  if (record.isNull()) {
    record = makeRecord(solid, key);
  } else {
    record->upgradeOpen();
  }
  if (record.isNull()) return;
  OdBinaryData data;
  data.resize(static_cast<OdUInt32>(bytes.size()));
  std::memcpy(data.asArrayPtr(), bytes.data(), bytes.size());
  const OdResBufPtr chain = OdResBuf::newRb(kBinary);
  chain->setBinaryChunk(data);
  OdResBufPtr last = chain;
  for (const OdDbObjectId& id : pointers) {
    last->setNext(OdResBuf::newRb(kSoftPointer, id));
    last = last->next();
  }
  (void)record->setFromRbChain(chain);
}

}  // namespace vdm_host
