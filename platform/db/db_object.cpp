// OdDbObject: opens, changes, erasing and reactors. Filing is in db_object_filing.cpp, cloning in
// db_object_clone.cpp.
#include "platform/db/db_object.h"

#include <algorithm>

#include "platform/base/error.h"
#include "platform/db/database_impl.h"
#include "platform/db/internal_access.h"
#include "platform/db/locked_layers.h"
#include "platform/db/object_extra.h"
#include "platform/db/reactor_calls.h"

OD_RX_DEFINE_DB(OdDbObject, OdGiDrawable, L"OdDbObject", 0, 0, 0, OdString(), OdString())

OdDbObject::OdDbObject() : m_refs(1) {}
OdDbObject::~OdDbObject() = default;

// Opens.

OdDbObjectPtr OdDbObject::opened(OdDbObject* object, OdDb::OpenMode mode) {
  if (mode == OdDb::kForRead) return OdDbObjectPtr(object);
  object->addRefTagged(static_cast<unsigned>(mode));
  if (mode == OdDb::kForWrite) object->writeOpened();
  return OdDbObjectPtr::attachTagged(object, static_cast<unsigned>(mode));
}

void OdDbObject::addRefTagged(unsigned tag) {
  ++m_refs;
  if (tag == kOdRxWrite) ++m_writeRefs;
  if (tag == kOdRxNotify) ++m_notifyRefs;
}

void OdDbObject::releaseTagged(unsigned tag) {
  if (tag == kOdRxNotify) --m_notifyRefs;
  if (tag == kOdRxWrite) {
    --m_writeRefs;
    if (m_writeRefs == 0) m_bits &= static_cast<OdUInt16>(~kBitDowngraded);
    writeOpensChanged();
  }
  release();
}

void OdDbObject::writeOpensChanged() {
  if ((m_writeRefs == 0 || (m_bits & kBitDowngraded) != 0) && m_upgrades == 0) writeClosed();
}

void OdDbObject::lastReferenceGone() {
  if (m_idRecord == nullptr) {
    delete this;
    return;
  }
  if (m_upgrades == 0) return;
  const OdDbInternalRead kept(this);  // reactors may open and close the object meanwhile
  m_upgrades = 0;
  writeClosed();
}

void OdDbObject::writeClosed() {
  if (m_idRecord == nullptr || (m_bits & (kBitModified | kBitOpenedForModifySent)) == 0) return;
  const unsigned bits = m_bits;
  m_bits &= static_cast<OdUInt16>(
      ~(kBitModified | kBitGraphicsModified | kBitXDataModified | kBitOpenedForModifySent));
  if ((bits & kBitModified) == 0) return;
  subClose();
  if ((bits & kBitXDataModified) != 0) {
    OdDbReactorCalls::tell<const OdDbObject*>(this, &OdDbObject::modifiedXData,
                                              &OdDbObjectReactor::modifiedXData, this);
  }
  if ((bits & kBitGraphicsModified) != 0) {
    OdDbReactorCalls::tell<const OdDbObject*>(this, &OdDbObject::modifiedGraphics,
                                              &OdDbObjectReactor::modifiedGraphics, this);
  }
  OdDbReactorCalls::tell<const OdDbObject*>(this, &OdDbObject::modified,
                                            &OdDbObjectReactor::modified, this);
  if (m_idRecord == nullptr) return;
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(m_idRecord);
  impl.tellDatabaseReactors(
      [this, &impl](OdDbDatabaseReactor* reactor) { reactor->objectModified(impl.self, this); });
}

// Identity.

OdDbDatabase* OdDbObject::database() const {
  return m_idRecord == nullptr ? nullptr : m_idRecord->database;
}

OdDbObjectId OdDbObject::ownerId() const {
  if (m_idRecord != nullptr) return OdDbObjectId(m_idRecord->owner);
  return OdDbObjectId(m_extra ? m_extra->pendingOwner : nullptr);
}

void OdDbObject::setOwnerId(const OdDbObjectId& owner) {
  if (ownerId() == owner) return;
  if (m_idRecord == nullptr) {
    extra().pendingOwner = owner.idRecord();
    return;
  }
  assertWriteEnabled();
  m_idRecord->owner = owner.idRecord();
}

bool OdDbObject::isErased() const {
  return m_idRecord != nullptr && m_idRecord->has(OdDbIdRecord::kErased);
}

bool OdDbObject::isNewObject() const {
  return m_idRecord != nullptr && !m_idRecord->has(OdDbIdRecord::kInFile);
}

bool OdDbObject::isUndoing() const {
  return m_idRecord != nullptr && OdDbDatabaseImpl::of(m_idRecord).undo.isApplying();
}

// Open state.

bool OdDbObject::isWritable() const {
  if (m_idRecord == nullptr || m_upgrades > 0 || (m_bits & kBitInternalWrite) != 0) return true;
  return m_writeRefs > 0 && m_notifyRefs == 0 && (m_bits & kBitDowngraded) == 0;
}

bool OdDbObject::isWriteEnabled() const { return isWritable(); }

bool OdDbObject::isNotifyEnabled() const { return m_notifyRefs > 0; }

void OdDbObject::raiseNotOpenForRead() const {
  throw OdError(eNotOpenForRead, OdString("object ") + getDbHandle().ascii());
}

void OdDbObject::assertWriteEnabled(bool autoUndo, bool recordModified) {
  if (m_idRecord == nullptr || (m_bits & kBitInternalWrite) != 0) return;
  if (!isWritable()) [[unlikely]] {
    throw OdError(m_notifyRefs > 0 ? eWasOpenForNotify : eNotOpenForWrite,
                  OdString("object ") + getDbHandle().ascii());
  }
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(m_idRecord);
  if (impl.readOnly) [[unlikely]]
    throw OdError(eReadOnlyDatabase, impl.filename);
  if (recordModified && (m_bits & kBitOpenedForModifySent) == 0) tellOpenedForModify();
  if (autoUndo && (m_bits & kBitUndoDisabled) == 0 && impl.undo.isRecording() &&
      !impl.undo.isCovered(m_idRecord)) {
    impl.undo.recordState(this);
  }
  if (recordModified) m_bits |= kBitModified;
  impl.markDirty(m_idRecord);
}

void OdDbObject::tellOpenedForModify() {
  m_bits |= kBitOpenedForModifySent;
  OdDbReactorCalls::tell<const OdDbObject*>(this, &OdDbObject::openedForModify,
                                            &OdDbObjectReactor::openedForModify, this);
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(m_idRecord);
  impl.tellDatabaseReactors([this, &impl](OdDbDatabaseReactor* reactor) {
    reactor->objectOpenedForModify(impl.self, this);
  });
}

void OdDbObject::upgradeOpen() {
  if (m_idRecord == nullptr) return;
  if (OdDbDatabaseImpl::of(m_idRecord).readOnly) {
    throw OdError(eReadOnlyDatabase, OdDbDatabaseImpl::of(m_idRecord).filename);
  }
  assertReadEnabled();
  if (oddbRefusesWrite(this)) {
    throw OdError(eOnLockedLayer, OdString("object ") + getDbHandle().ascii());
  }
  ++m_upgrades;
}

void OdDbObject::downgradeOpen() {
  if (m_idRecord == nullptr) return;
  if (m_upgrades > 0) {
    --m_upgrades;
  } else if (m_writeRefs > 0) {
    m_bits |= kBitDowngraded;
  }
  writeOpensChanged();
}

void OdDbObject::xmitPropagateModify() {
  if (isWritable()) writeClosed();
}

OdDbDwgFiler* OdDbObject::undoFiler() {
  if (m_idRecord == nullptr) return nullptr;
  OdDbDwgFiler* started = OdDbDatabaseImpl::of(m_idRecord).undo.partialFiler(this);
  return started != nullptr ? started : beginPartialUndo(isA());
}

OdDbDwgFiler* OdDbObject::beginPartialUndo(OdRxClass* cls) {
  if (m_idRecord == nullptr || (m_bits & kBitUndoDisabled) != 0) return nullptr;
  return OdDbDatabaseImpl::of(m_idRecord).undo.beginPartial(this, cls);
}

void OdDbObject::disableUndoRecording(bool disable) {
  m_bits = static_cast<OdUInt16>(disable ? m_bits | kBitUndoDisabled
                                         : m_bits & ~static_cast<unsigned>(kBitUndoDisabled));
}

void OdDbObject::noteGraphicsModified() {
  if (m_idRecord != nullptr) m_bits |= kBitGraphicsModified | kBitModified;
}

// Erasing.

OdResult OdDbObject::erase(bool erasing) {
  if (m_idRecord == nullptr) return eObjectNotInDatabase;
  if (isErased() == erasing) return erasing ? eWasErased : eOk;
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  const OdResult result = subErase(erasing);
  if (result == eOk) completeErase(erasing);
  return result;
}

void OdDbObject::completeErase(bool erasing) {
  OdDbDatabaseImpl& impl = OdDbDatabaseImpl::of(m_idRecord);
  impl.undo.recordErased(m_idRecord, erasing);
  impl.setErased(m_idRecord, erasing);
}

OdResult OdDbObject::subErase(bool) { return eOk; }

void OdDbObject::subClose() {}

void OdDbObject::subExistenceChanged() {}

void OdDbObject::audit(OdDbAuditInfo*) {}

// Reactors.

OdDbObject::Extra& OdDbObject::extra() {
  if (!m_extra) m_extra = std::make_unique<Extra>();
  return *m_extra;
}

void OdDbObject::addPersistentReactor(const OdDbObjectId& reactor) {
  if (reactor.isNull()) throw OdError(eNullObjectId, OdString("persistent reactor"));
  if (hasPersistentReactor(reactor)) return;
  assertWriteEnabled();
  extra().reactors.push_back({reactor.idRecord(), nullptr});
}

void OdDbObject::removePersistentReactor(const OdDbObjectId& reactor) {
  if (!hasPersistentReactor(reactor)) return;
  assertWriteEnabled();
  if (!m_extra) return;  // a reactor that a derived class knows by other means
  std::erase_if(m_extra->reactors,
                [&reactor](const auto& entry) { return entry.persistent == reactor.idRecord(); });
}

bool OdDbObject::hasPersistentReactor(const OdDbObjectId& reactor) const {
  assertReadEnabled();
  if (!m_extra || reactor.isNull()) return false;
  return std::any_of(
      m_extra->reactors.begin(), m_extra->reactors.end(),
      [&reactor](const auto& entry) { return entry.persistent == reactor.idRecord(); });
}

OdDbObjectIdArray OdDbObject::getPersistentReactors() const {
  assertReadEnabled();
  OdDbObjectIdArray ids;
  if (!m_extra) return ids;
  for (const Extra::Reactor& entry : m_extra->reactors) {
    if (entry.persistent != nullptr) ids.append(OdDbObjectId(entry.persistent));
  }
  return ids;
}

void OdDbObject::addReactor(OdDbObjectReactor* reactor) {
  if (reactor == nullptr) throw OdError(eInvalidInput, OdString("null reactor"));
  removeReactor(reactor);
  extra().reactors.push_back({nullptr, reactor});
}

void OdDbObject::removeReactor(OdDbObjectReactor* reactor) {
  if (!m_extra) return;
  std::erase_if(m_extra->reactors,
                [reactor](const auto& entry) { return entry.transient == reactor; });
}

void OdDbObject::erased(const OdDbObject*, bool) {}
void OdDbObject::modified(const OdDbObject*) {}
void OdDbObject::modifiedGraphics(const OdDbObject*) {}
void OdDbObject::openedForModify(const OdDbObject*) {}
void OdDbObject::modifiedXData(const OdDbObject*) {}
void OdDbObject::modifyUndone(const OdDbObject*) {}
void OdDbObject::copied(const OdDbObject*, const OdDbObject*) {}
void OdDbObject::unappended(const OdDbObject*) {}
void OdDbObject::reappended(const OdDbObject*) {}
void OdDbObject::goodbye(const OdDbObject*) {}
