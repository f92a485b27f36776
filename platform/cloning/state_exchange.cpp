// Exchange of the states of objects, with translation of their references.
#include "platform/cloning/state_exchange.h"

#include "platform/cloning/cloner.h"
#include "platform/db/internal_access.h"
#include "platform/filer/id_filer.h"
#include "platform/filer/memory_filer.h"

namespace {

OdDbObjectId translated(void* mapping, OdDbObjectId id, OdDb::ReferenceType) {
  OdDbIdPair pair(id);
  return !id.isNull() && static_cast<const OdDbIdMapping*>(mapping)->compute(pair) ? pair.value()
                                                                                   : id;
}

/// What an object files, to be read by another one.
class FiledState {
 public:
  explicit FiledState(const OdDbObject* object)
      : m_filer(OdDbDwgFiler::kCopyFiler, m_buffer, object->database()) {
    object->dwgOutFields(&m_filer);
  }

  OdResult readInto(OdDbObject* object, const OdDbIdMapping& mapping) {
    object->assertWriteEnabled();
    m_filer.setIdTranslator(&translated, const_cast<OdDbIdMapping*>(&mapping));
    m_filer.startReading(0, 0);
    const OdDbInternalWrite internalWrite(object);
    return object->dwgInFields(&m_filer);
  }

 private:
  OdDbFilerBuffer m_buffer;
  OdDbMemoryFiler m_filer;
};

void adopt(const OdDbObject* owner) {
  OdDbIdFiler filer(owner->database());
  owner->dwgOutFields(&filer);
  for (const OdDbFiledId& filed : filer.ids()) {
    if (!OdDb::isOwnership(filed.type) || filed.id.ownerId() == owner->objectId()) continue;
    const OdDbObjectPtr owned = filed.id.openObject(OdDb::kForWrite);
    if (!owned.isNull()) owned->setOwnerId(owner->objectId());
  }
}

OdResult exchange(const OdDbIdPair& pair, const OdDbIdMapping& forward,
                  const OdDbIdMapping& reverse) {
  const OdDbObjectPtr key = pair.key().safeOpenObject(OdDb::kForWrite);
  const OdDbObjectPtr value = pair.value().safeOpenObject(OdDb::kForWrite);
  if (key->isA() != value->isA()) return eWrongObjectType;
  FiledState ofKey(key);
  FiledState ofValue(value);
  OdResult result = ofValue.readInto(key, reverse);
  if (result == eOk) result = ofKey.readInto(value, forward);
  OdDbCloner::endFlux(key);
  OdDbCloner::endFlux(value);
  return result;
}

}  // namespace

OdResult oddbExchangeStates(const std::vector<OdDbIdPair>& pairs, const OdDbIdMapping& forward,
                            const OdDbIdMapping& reverse) {
  for (const OdDbIdPair& pair : pairs) {
    const OdResult result = exchange(pair, forward, reverse);
    if (result != eOk) return result;
  }
  for (const OdDbIdPair& pair : pairs) {
    adopt(pair.key().safeOpenObject());
    adopt(pair.value().safeOpenObject());
  }
  return eOk;
}
