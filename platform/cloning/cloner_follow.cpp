// Cloning into another database: where followed objects go, and what names they get.
#include <algorithm>

#include "platform/base/error.h"
#include "platform/cloning/clone_names.h"
#include "platform/cloning/clone_state.h"
#include "platform/cloning/cloner.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "platform/db/open_upgrade.h"
#include "platform/db/owner_listing.h"

// Clones an object that a hard pointer names, together with whatever of its owners the destination
// has no counterpart of.
void OdDbCloner::follow(OdDbObjectId id) {
  if (id.isErased() || id.originalDatabase() != m_mapping.origDb()) return;
  const std::vector<OdDbObjectId> chain = unmappedOwners(id);
  for (auto source = chain.rbegin(); source != chain.rend(); ++source) {
    const OdDbObjectId sourceOwner = source->ownerId();
    const OdDbObjectId cloneOwner = counterpart(sourceOwner);
    if (!counterpart(*source).isNull()) continue;  // came along with its owner
    if (!sourceOwner.isNull() && !mayReceive(cloneOwner)) return;
    if (!cloneInto(*source, cloneOwner, /*onlyOnTheWay=*/*source != id)) return;
  }
}

// The id and its owners, innermost first, up to the first that has a counterpart.
std::vector<OdDbObjectId> OdDbCloner::unmappedOwners(OdDbObjectId id) const {
  std::vector<OdDbObjectId> chain;
  std::size_t checkpoint = 0;
  while (!id.isNull() && counterpart(id).isNull()) {
    if (!chain.empty() && chain[checkpoint] == id) break;  // owners in a cycle
    chain.push_back(id);
    if (chain.size() >= 2 * (checkpoint + 1)) checkpoint = chain.size() - 1;
    id = id.ownerId();
  }
  return chain;
}

// Followed objects are added to owners that list by name, and to blocks that are filled anyway;
// what an object of the destination or a finished clone owns is left as it is.
bool OdDbCloner::mayReceive(OdDbObjectId cloneOwner) const {
  if (cloneOwner.isNull()) return false;
  const std::vector<OdDbObjectId>& receivers = m_state.receivers;
  if (std::find(receivers.begin(), receivers.end(), cloneOwner) != receivers.end()) return true;
  const OdDbDatabase* destination = m_mapping.destDb();
  if (cloneOwner == destination->getModelSpaceId() ||
      cloneOwner == destination->getPaperSpaceId()) {
    return true;
  }
  const OdDbObjectPtr owner = cloneOwner.openObject();
  return !owner.isNull() && oddbListsByName(owner);
}

bool OdDbCloner::cloneInto(OdDbObjectId source, OdDbObjectId cloneOwner, bool onlyOnTheWay) {
  const OdDbObjectPtr object = source.openObject();
  if (object.isNull()) return false;
  const OdDbObjectPtr owner = cloneOwner.openObject();
  if (onlyOnTheWay && !owner.isNull() && object->isKindOf(OdDbDictionary::desc())) {
    matchDictionary(object, owner);
  } else {
    cloneObject(object, m_mapping, owner, /*isPrimary=*/true, m_type);
    finishOwned();
  }
  return !counterpart(source).isNull();
}

// A dictionary on the way to a followed entry: the destination's of the same place, made empty
// where there is none.
void OdDbCloner::matchDictionary(const OdDbObject* source, OdDbObject* cloneOwner) {
  OdDbObjectId match;
  if (!oddbListsByName(cloneOwner)) {
    const OdDbOpenUpgrade upgrade(cloneOwner);
    match = cloneOwner->createExtensionDictionary();
  } else {
    OdString name = oddbRecordName(source);
    match = oddbEntryAt(cloneOwner, name);
    if (!match.isNull() && match.objectClass() != source->isA()) {
      name = freeName(source, cloneOwner, name);
      match.setNull();
    }
    if (match.isNull()) {
      const OdDbDictionaryPtr made = OdDbDictionary::cast(source->isA()->create());
      made->setTreatElementsAsHard(OdDbDictionary::cast(source)->isTreatElementsAsHard());
      m_mapping.destDb()->addOdDbObject(made, cloneOwner->objectId());
      oddbListWithOwner(made, cloneOwner, name);
      match = made->objectId();
    }
  }
  enterPair(OdDbIdPair(source->objectId(), match));
}

// Settles, before a primary clone is made, under which name it goes into an owner that lists by
// name. False when the destination's own entry serves instead: then the pair is entered.
bool OdDbCloner::settleName(const OdDbObject* source, OdDbObject* owner) {
  if (owner == nullptr || !oddbListsByName(owner)) return true;
  OdDbCloneState::Settled settled{source->objectId(), oddbRecordName(source), OdDbObjectId()};
  if (source->isKindOf(OdDbBlockTableRecord::desc())) {
    const OdString anonymous = oddbAnonymousBlockName(settled.name);
    if (!anonymous.isEmpty()) {
      settled.name = anonymous;
      m_state.settled.push_back(settled);
      return true;
    }
  }
  OdDbObjectId present;
  if (!settled.name.isEmpty()) present = oddbEntryAt(owner, settled.name);
  OdDb::DuplicateRecordCloning rule = m_mapping.duplicateRecordCloning();
  if (rule == OdDb::kDrcNotApplicable && toOtherDatabase()) {
    const OdDbDictionaryPtr dictionary = OdDbDictionary::cast(owner);
    rule = dictionary.isNull() ? OdDb::kDrcIgnore : dictionary->mergeStyle();
  }
  const bool sameClass = !present.isNull() && present.objectClass() == source->isA();
  if (!present.isNull() && sameClass &&
      (rule == OdDb::kDrcIgnore || (rule == OdDb::kDrcReplace && present == source->objectId()))) {
    enterPair(OdDbIdPair(source->objectId(), present));
    return false;
  }
  if (!present.isNull() && rule == OdDb::kDrcReplace) {
    if (sameClass) {
      settled.replaced = present;
    } else {
      const OdDbObjectPtr old = present.safeOpenObject(OdDb::kForWrite);
      const OdResult result = old->erase();
      if (result != eOk) throw OdError(result, L"replacing " + settled.name);
    }
  } else if (!present.isNull() || settled.name.isEmpty()) {
    settled.name = freeName(source, owner, settled.name);
  }
  m_state.settled.push_back(settled);
  return true;
}

OdString OdDbCloner::freeName(const OdDbObject* source, const OdDbObject* owner,
                              const OdString& name) const {
  const OdString base = name.isEmpty() ? source->isA()->name() : name;
  const OdDb::DuplicateRecordCloning rule = m_mapping.duplicateRecordCloning();
  if (rule == OdDb::kDrcUnmangleName) {
    const OdString plain = oddbUnmangledName(base);
    if (oddbEntryAt(owner, plain).isNull()) return plain;
  }
  OdString prefix;
  if (rule == OdDb::kDrcXrefMangleName && !m_mapping.insertingXrefBlockId().isNull()) {
    const OdDbBlockTableRecordPtr block =
        m_mapping.insertingXrefBlockId().openAs<OdDbBlockTableRecord>();
    if (!block.isNull()) prefix = block->getName();
  }
  return oddbMangledName(m_state, owner, prefix, base);
}
