// The phases of a clone operation, and the making of one clone.
//
// The idea: an object knows its references only by filing them, so cloning is filing. Each source
// is written into a buffer by a filer that notes its ids, and read back into a new object of its
// class; the ids that it files as owned are cloned next, the hard pointers of a wblock clone are
// queued. Clones hold the ids of their sources until the last phase, which files each clone once
// more and reads it back through the mapping: only then does every source have its pair.
//
// It is right because the pair is entered before what the object owns is looked at. A cycle of
// ownership therefore meets a pair, which ends it, and two paths to one object give one clone. It
// ends because each step enters a pair for a source that had none, and sources are finite.
// Recursion is bounded by kMaxNesting; deeper objects wait in a list. Everything runs in one
// transaction of the destination, so a failure at any point takes back all clones, and rollBack()
// their pairs.
//
// It costs two filings and two readings for a clone that has ids, one of each for a clone without;
// look-ups in the mapping are constant.
#include "platform/cloning/cloner.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/cloning/clone_state.h"
#include "platform/db/database.h"
#include "platform/db/database_impl.h"
#include "platform/db/internal_access.h"
#include "platform/db/owner_listing.h"
#include "platform/db/proxy_object.h"
#include "platform/db/reactor_calls.h"
#include "platform/db/symbol_table_record.h"
#include "platform/filer/id_filer.h"

namespace {

OdString nameOf(const OdDbObject* object) {
  return object->isA()->name() + L"(" + object->getDbHandle().ascii() + L")";
}

// Objects that every drawing has: one of another drawing stands for the same of this one.
constexpr OdUInt64 kSharedRoots[] = {
#define OD_DB_ROOT(Name, handle, Class, text) handle,
#include "platform/db/root_object_rows.inc"
};

}  // namespace

/// Counts the levels of clones, and drops what a level has stacked, also when it fails.
class OdDbCloner::Nesting : OdNonCopyable {
 public:
  explicit Nesting(OdDbCloneState& state)
      : m_state(state), m_settled(state.settled.size()), m_owned(state.owned.size()) {
    ++m_state.nesting;
  }
  ~Nesting() {
    --m_state.nesting;
    m_state.settled.resize(m_settled);
    m_state.owned.resize(m_owned);
  }

 private:
  OdDbCloneState& m_state;
  const std::size_t m_settled;
  const std::size_t m_owned;
};

OdDbCloner::OdDbCloner(OdDbIdMapping& mapping, OdDbDwgFiler::FilerType type)
    : m_mapping(mapping), m_state(stateOf(mapping)), m_type(type), m_access(mapping.destDb()) {}

OdDbCloneState& OdDbCloner::stateOf(OdDbIdMapping& mapping) {
  if (!mapping.m_cloneState) mapping.m_cloneState = std::make_unique<OdDbCloneState>();
  return *mapping.m_cloneState;
}

bool OdDbCloner::toOtherDatabase() const { return m_mapping.origDb() != m_mapping.destDb(); }

OdDbObjectId OdDbCloner::counterpart(OdDbObjectId id) const {
  OdDbIdPair pair(id);
  if (m_mapping.compute(pair)) return pair.value();
  if (!toOtherDatabase()) return OdDbObjectId::kNull;
  const auto target = m_state.targets.find(id);
  return target == m_state.targets.end() ? OdDbObjectId::kNull : target->second;
}

void OdDbCloner::setTakeovers(OdDbIdMapping& mapping,
                              std::unordered_map<OdDbObjectId, OdDbObjectId> clones) {
  stateOf(mapping).takeovers = std::move(clones);
}

void OdDbCloner::enterPair(const OdDbIdPair& pair) {
  m_mapping.assign(pair);
  m_state.entered.push_back(pair.key());
}

// ---- Phases

OdResult OdDbCloner::run(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                         bool deferXlation) {
  const OdResult checked = check(ids, owner);
  if (checked != eOk) return checked;
  if (m_state.running) {  // called from a hook: the running operation ends it
    clonePrimaries(ids, owner);
    return eOk;
  }
  const std::size_t numUntranslated = m_state.untranslated.size();
  const std::size_t numUnannounced = m_state.unannounced.size();
  OdDbTransaction transaction(m_mapping.destDb());
  m_state.entered.clear();
  try {
    runPhases(ids, owner, deferXlation);
    return transaction.commit();
  } catch (const OdError& error) {
    rollBack(numUntranslated, numUnannounced);
    m_mapping.destDb()->impl().report(OdString(L"clone failed: ") + error.description());
    return error.code();
  } catch (const std::bad_alloc&) {
    rollBack(numUntranslated, numUnannounced);
    return eOutOfMemory;
  } catch (...) {
    rollBack(numUntranslated, numUnannounced);
    throw;
  }
}

void OdDbCloner::runPhases(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                           bool deferXlation) {
  const OdDbBusyMark running(m_state.running);
  seedRoots();
  clonePrimaries(ids, owner);
  finishFollowed();
  if (!deferXlation) translateAll();
}

OdResult OdDbCloner::check(const OdDbObjectIdArray& ids, const OdDbObjectId& owner) const {
  if (m_mapping.origDb() == nullptr || m_mapping.destDb() == nullptr) return eNoDatabase;
  if (m_mapping.destDb()->isReadOnly()) return eReadOnlyDatabase;
  if (!owner.isNull()) {
    if (owner.originalDatabase() != m_mapping.destDb()) return eWrongDatabase;
    if (owner.isErased()) return eWasErased;
  }
  for (const OdDbObjectId& id : ids) {
    if (id.isNull()) return eNullObjectId;
    if (id.originalDatabase() != m_mapping.origDb()) return eWrongDatabase;
    if (id.isErased()) return eWasErased;
  }
  return eOk;
}

void OdDbCloner::seedRoots() {
  if (!toOtherDatabase()) return;
  for (const OdUInt64 handle : kSharedRoots) {
    const OdDbObjectId key = m_mapping.origDb()->getOdDbObjectId(handle);
    const OdDbObjectId value = m_mapping.destDb()->getOdDbObjectId(handle);
    if (!key.isNull() && !value.isNull() && counterpart(key).isNull()) {
      enterPair(OdDbIdPair(key, value));
    }
  }
}

void OdDbCloner::clonePrimaries(const OdDbObjectIdArray& ids, const OdDbObjectId& owner) {
  if (!owner.isNull()) {
    std::vector<OdDbObjectId>& receivers = m_state.receivers;
    const bool known = std::find(receivers.begin(), receivers.end(), owner) != receivers.end();
    if (!known) receivers.push_back(owner);
    for (const OdDbObjectId& id : ids) m_state.targets.try_emplace(id.ownerId(), owner);
  }
  // For write where the open state allows it, so that its reactors hear of one change.
  OdDbObjectPtr ownerObject = owner.openObject(OdDb::kForWrite);
  if (ownerObject.isNull() && !owner.isNull()) ownerObject = owner.safeOpenObject();
  for (const OdDbObjectId& id : ids) {
    const OdDbObjectPtr source = id.safeOpenObject();
    if (!ownerObject.isNull()) {
      cloneObject(source, m_mapping, ownerObject, /*isPrimary=*/true, m_type);
    } else if (toOtherDatabase()) {
      follow(id);
    } else {
      const OdDbObjectPtr ownOwner = id.ownerId().openObject();
      cloneObject(source, m_mapping, ownOwner, /*isPrimary=*/true, m_type);
    }
    finishOwned();
  }
}

void OdDbCloner::finishOwned() {
  if (m_state.nesting > 0) return;
  while (!m_state.waiting.empty()) {
    const OdDbCloneState::Waiting item = m_state.waiting.back();
    m_state.waiting.pop_back();
    const OdDbObjectPtr cloneOwner = item.cloneOwner.safeOpenObject();
    OdDbCloner(m_mapping, item.type).cloneOwned(item.source, cloneOwner);
  }
}

void OdDbCloner::finishFollowed() {
  while (m_state.numFollowed < m_state.followed.size()) {
    follow(m_state.followed[m_state.numFollowed++]);
  }
  m_state.followed.clear();
  m_state.numFollowed = 0;
}

void OdDbCloner::translateIds(OdDbIdMapping& mapping, OdDbDwgFiler::FilerType type) {
  OdDbCloner cloner(mapping, type);
  if (mapping.origDb() == nullptr || cloner.m_state.running) return;
  cloner.finishOwned();
  cloner.finishFollowed();
  cloner.translateAll();
}

void OdDbCloner::rollBack(std::size_t numUntranslated, std::size_t numUnannounced) {
  for (auto key = m_state.entered.rbegin(); key != m_state.entered.rend(); ++key) {
    m_mapping.del(*key);
  }
  m_state.entered.clear();
  m_state.waiting.clear();
  m_state.followed.clear();
  m_state.numFollowed = 0;
  m_state.untranslated.resize(std::min(numUntranslated, m_state.untranslated.size()));
  m_state.unannounced.resize(std::min(numUnannounced, m_state.unannounced.size()));
}

// ---- One clone

OdDbObjectPtr OdDbCloner::cloneObject(const OdDbObject* source, OdDbIdMapping& mapping,
                                      OdDbObject* owner, bool isPrimary,
                                      OdDbDwgFiler::FilerType type) {
  if (source->database() == nullptr) throw OdError(eObjectNotInDatabase, source->isA()->name());
  OdDbIdPair pair(source->objectId());
  if (source->isErased() || mapping.compute(pair)) return OdDbObjectPtr();
  if (mapping.origDb() == nullptr) mapping.setOrigDb(source->database());
  if (mapping.destDb() == nullptr) {
    mapping.setDestDb(owner == nullptr ? source->database() : owner->database());
  }
  OdDbCloner cloner(mapping, type);
  OdDbObjectPtr clone;
  {
    const Nesting nesting(cloner.m_state);
    if (isPrimary && !cloner.settleName(source, owner)) return OdDbObjectPtr();
    clone = type == OdDbDwgFiler::kWblockCloneFiler
                ? source->subWblockClone(mapping, owner, isPrimary)
                : source->subDeepClone(mapping, owner, isPrimary);
  }
  cloner.finishOwned();
  return clone;
}

OdDbObjectPtr OdDbCloner::defaultHook(const OdDbObject* source, OdDbIdMapping& mapping,
                                      OdDbObject* owner, bool isPrimary,
                                      OdDbDwgFiler::FilerType type) {
  OdDbIdPair pair(source->objectId());
  if (mapping.compute(pair)) return OdDbObjectPtr();
  return OdDbCloner(mapping, type).makeClone(source, owner, isPrimary);
}

OdDbObjectPtr OdDbCloner::makeClone(const OdDbObject* source, OdDbObject* owner, bool isPrimary) {
  OdString name;
  OdDbObjectId replaced;
  if (!m_state.settled.empty() && m_state.settled.back().source == source->objectId()) {
    name = m_state.settled.back().name;
    replaced = m_state.settled.back().replaced;
  }
  if (const auto takeover = m_state.takeovers.find(source->objectId());
      takeover != m_state.takeovers.end()) {
    replaced = takeover->second;
  }
  const std::size_t firstOwned = m_state.owned.size();
  OdDbObjectPtr clone = readClone(source, replaced);
  if (!name.isEmpty()) {
    if (OdDbSymbolTableRecord* record = OdDbSymbolTableRecord::cast(clone).get();
        record != nullptr && record->getName() != name) {
      record->setName(name);
    }
  }
  const OdDbObjectId ownerId = owner == nullptr ? OdDbObjectId::kNull : owner->objectId();
  const OdDbObjectId id =
      replaced.isNull() ? m_mapping.destDb()->addOdDbObject(clone, ownerId) : replaced;
  OdDbIdPair pair(source->objectId(), id, /*cloned=*/true, isPrimary);
  enterPair(pair);
  if (!m_state.ids.empty() || source->hasXData()) {
    m_state.untranslated.push_back(id);
    clone->setOdDbObjectIdsInFlux();
  }
  if (isPrimary && owner != nullptr && replaced.isNull()) {
    clone->appendToOwner(pair, owner, m_mapping);
  }
  if (OdDbReactorCalls::hasReactors(source)) {
    m_state.unannounced.push_back({source->objectId(), id});
  }
  const std::size_t endOwned = m_state.owned.size();
  for (std::size_t i = firstOwned; i < endOwned; ++i) cloneOwned(m_state.owned[i], clone);
  m_state.owned.resize(firstOwned);
  return clone;
}

// Files the source into the state's buffer and sorts its ids by what is to become of them.
void OdDbCloner::fileSource(const OdDbObject* source) {
  m_state.buffer.clear();
  m_state.ids.clear();
  OdDbMemoryFiler filer(m_type, m_state.buffer, source->database());
  filer.collectIds(&m_state.ids);
  source->dwgOutFields(&filer);
  const bool follows = m_type == OdDbDwgFiler::kWblockCloneFiler && toOtherDatabase();
  for (const OdDbFiledId& filed : m_state.ids) {
    if (OdDb::isOwnership(filed.type)) {
      m_state.owned.push_back(filed.id);
    } else if (follows && filed.type == OdDb::kHardPointerRef) {
      m_state.followed.push_back(filed.id);
    }
  }
}

OdDbObjectPtr OdDbCloner::readClone(const OdDbObject* source, OdDbObjectId replaced) {
  OdDbObjectPtr clone;
  if (replaced.isNull()) {
    const OdRxObjectPtr created = source->isA()->create();
    clone = OdDbObject::cast(created);
    if (clone.isNull()) throw OdError(eNotImplementedForClass, L"clone of " + nameOf(source));
  } else {
    clone = replaced.safeOpenObject(OdDb::kForWrite);
    clone->assertWriteEnabled();
    eraseOwnedOf(clone);
  }
  fileSource(source);
  OdDbMemoryFiler filer(m_type, m_state.buffer, m_mapping.destDb());
  filer.startReading(0, 0);
  const OdResult result = clone->dwgInFields(&filer);
  if (result != eOk) throw OdError(result, L"clone of " + nameOf(source));
  adaptProxy(source, clone);
  return clone;
}

void OdDbCloner::cloneOwned(OdDbObjectId source, OdDbObject* cloneOwner) {
  if (m_state.nesting >= kMaxNesting) {
    m_state.waiting.push_back({source, cloneOwner->objectId(), m_type});
    return;
  }
  if (source.originalDatabase() != m_mapping.origDb()) return;
  const OdDbObjectPtr object = source.openObject();
  if (!object.isNull()) {
    cloneObject(object, m_mapping, cloneOwner, /*isPrimary=*/false, m_type);
  }
}

// What the present state owns gives way to what the new state owns.
void OdDbCloner::eraseOwnedOf(OdDbObject* object) {
  OdDbIdFiler filer;
  object->dwgOutFields(&filer);
  for (const OdDbFiledId& filed : filer.ids()) {
    if (!OdDb::isOwnership(filed.type)) continue;
    const OdDbObjectPtr owned = filed.id.openObject(OdDb::kForWrite);
    if (!owned.isNull() && owned->ownerId() == object->objectId()) owned->erase();
  }
}

void OdDbCloner::listWithOwner(OdDbObject* clone, const OdDbIdPair& pair, OdDbObject* owner,
                               OdDbIdMapping& mapping) {
  OdDbCloner cloner(mapping, OdDbDwgFiler::kDeepCloneFiler);
  for (auto item = cloner.m_state.settled.rbegin(); item != cloner.m_state.settled.rend(); ++item) {
    if (item->source == pair.key()) return oddbListWithOwner(clone, owner, item->name);
  }
  OdString name;
  if (oddbListsByName(owner)) {
    const OdDbObjectPtr source = pair.key().openObject();
    if (!source.isNull()) name = oddbRecordName(source);
    if (name.isEmpty() || !oddbEntryAt(owner, name).isNull()) {
      name = cloner.freeName(clone, owner, name);
    }
  }
  oddbListWithOwner(clone, owner, name);
}
