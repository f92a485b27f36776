// The last phase of cloning: the ids that clones hold become those of the destination.
#include "platform/base/error.h"
#include "platform/cloning/clone_state.h"
#include "platform/cloning/cloner.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/entity.h"
#include "platform/db/internal_access.h"
#include "platform/db/object_extra.h"
#include "platform/db/proxy_object.h"
#include "platform/db/reactor_calls.h"

void OdDbCloner::translateAll() {
  for (const OdDbObjectId id : m_state.untranslated) {
    const OdDbObjectPtr clone = id.openObject(OdDb::kForWrite);
    if (!clone.isNull()) translate(clone);
  }
  // An entity may tell others about itself, now that it knows the right ones.
  for (const OdDbObjectId id : m_state.untranslated) {
    if (!id.objectClass()->isDerivedFrom(OdDbEntity::desc())) continue;
    const OdDbEntityPtr entity = id.openAs<OdDbEntity>(OdDb::kForWrite);
    if (!entity.isNull()) entity->subAppended();
  }
  m_state.untranslated.clear();
  announceCopies();
}

// A reactor that hears of a copy may make another one, which is announced after it.
void OdDbCloner::announceCopies() {
  for (std::size_t i = 0; i < m_state.unannounced.size(); ++i) {
    const OdDbCloneState::Copy copy = m_state.unannounced[i];
    const OdDbObjectPtr source = copy.source.openObject();
    const OdDbObjectPtr clone = copy.clone.openObject();
    if (source.isNull() || clone.isNull()) continue;
    OdDbReactorCalls::tell<const OdDbObject*, const OdDbObject*>(
        source, &OdDbObject::copied, &OdDbObjectReactor::copied, source.get(), clone.get());
  }
  m_state.unannounced.clear();
}

// The clone is filed and, when one of its ids becomes another, read back through the translation.
void OdDbCloner::translate(OdDbObject* clone) {
  m_translating = clone->objectId();
  m_state.buffer.clear();
  m_state.ids.clear();
  OdDbMemoryFiler filer(m_type, m_state.buffer, m_mapping.destDb());
  filer.collectIds(&m_state.ids);
  clone->dwgOutFields(&filer);
  bool changes = false;
  for (const OdDbFiledId& filed : m_state.ids) {
    changes = changes || translated(filed.id, filed.type) != filed.id;
  }
  if (changes) {
    clone->assertWriteEnabled(/*autoUndo=*/true, /*recordModified=*/false);
    filer.setIdTranslator(&OdDbCloner::translateId, this);
    filer.startReading(0, 0);
    const OdDbInternalWrite internalWrite(clone);
    const OdResult result = clone->dwgInFields(&filer);
    if (result != eOk) {
      throw OdError(result,
                    L"ids of " + clone->isA()->name() + L"(" + clone->getDbHandle().ascii() + L")");
    }
  }
  if (clone->hasXData()) translateXData(clone);
  endFlux(clone);
}

void OdDbCloner::endFlux(OdDbObject* object) {
  object->m_bits &= static_cast<OdUInt16>(~OdDbObject::kBitIdsInFlux);
}

OdDbObjectId OdDbCloner::translateId(void* self, OdDbObjectId id, OdDb::ReferenceType type) {
  return static_cast<const OdDbCloner*>(self)->translated(id, type);
}

OdDbObjectId OdDbCloner::translated(OdDbObjectId id, OdDb::ReferenceType type) const {
  if (id.isNull()) return id;
  OdDbIdPair pair(id);
  if (m_mapping.compute(pair)) return pair.value();
  if (OdDb::isOwnership(type)) return id.ownerId() == m_translating ? id : OdDbObjectId::kNull;
  if (!toOtherDatabase() || id.originalDatabase() == m_mapping.destDb()) return id;
  return counterpart(id);
}

// Handles in extended data name objects of the source; applications are registered where the clone
// is.
void OdDbCloner::translateXData(OdDbObject* clone) {
  const OdResBufPtr& chain = clone->m_extra->xdata;
  bool changed = false;
  for (OdResBufPtr item = chain; !item.isNull(); item = item->next()) {
    if (item->restype() == OdResBuf::kDxfRegAppName) {
      if (toOtherDatabase()) m_mapping.destDb()->newRegApp(item->getString());
      continue;
    }
    if (item->restype() != OdResBuf::kDxfXdHandle) continue;
    const OdDbHandle handle = item->getHandle();
    const OdDbObjectId id = m_mapping.origDb()->getOdDbObjectId(handle);
    OdDbHandle replacement = handle;
    if (!id.isNull()) {
      replacement = translated(id, OdDb::kSoftPointerRef).getHandle();
    } else if (toOtherDatabase()) {
      replacement = OdDbHandle();
    }
    if (replacement == handle) continue;
    if (!changed) clone->assertWriteEnabled(/*autoUndo=*/true, /*recordModified=*/false);
    changed = true;
    item->setHandle(replacement);
  }
}

// A clone of an object of an unknown class stands in for one, too. The number of the class is that
// of its drawing: the clone gets the one that its own drawing has for the class.
void OdDbCloner::adaptProxy(const OdDbObject* source, OdDbObject* clone) const {
  if ((source->m_bits & OdDbObject::kBitProxy) == 0) return;
  clone->m_bits |= OdDbObject::kBitProxy;
  const auto* proxy = static_cast<const OdDbProxyObject*>(source);
  const OdDbClassEntry* entry = source->database()->impl().classes.find(proxy->classId());
  if (entry == nullptr || !toOtherDatabase()) return;
  static_cast<OdDbProxyObject*>(clone)->setClassId(
      m_mapping.destDb()->impl().classes.adopt(*entry).id);
}
