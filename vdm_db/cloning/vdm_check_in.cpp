// Check-in of managers when a long transaction ends.
//
// Two mappings pair the objects: forward from the objects of the origin to their
// counterparts, which check-in has cloned from the copies, and reverse. Ownership is walked from
// each manager and its counterpart, and what both own is paired by position. Then all pairs
// exchange their states, with references translated. So the objects of the origin keep their ids,
// which others refer to, and have the edited contents.
#include "vdm_db/cloning/vdm_check_in.h"

#include <algorithm>
#include <unordered_set>

#include "platform/base/error.h"
#include "platform/cloning/state_exchange.h"
#include "vdm_db/cloning/vdm_clone_utils.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"

namespace {

OdDbIdMappingPtr emptyMappingLike(const OdDbIdMapping& active) {
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(active.deepCloneContext());
  mapping->setOrigDb(active.origDb());
  mapping->setDestDb(active.destDb());
  mapping->setDuplicateRecordCloning(active.duplicateRecordCloning());
  return mapping;
}

class CheckIn {
 public:
  CheckIn(const OdDbLongTransaction& transaction, const OdDbIdMapping& active)
      : m_transaction(transaction),
        m_active(active),
        m_forward(emptyMappingLike(active)),
        m_reverse(emptyMappingLike(active)) {}

  void enterOriginals(const OdArray<OdDbIdPair>& pairs) {
    for (const OdDbIdPair& pair : pairs) {
      if (pair.key().isNull()) continue;
      const OdDbObjectId counterpart = vdmu::findClone(m_active, pair.value());
      if (!counterpart.isNull()) enter(pair.key(), counterpart);
    }
  }

  void moveBack(const vdmu::VdmManagerLookup& lookup) {
    const OdDbObjectId origin = managerOfOrigin(lookup);
    const OdDbObjectId counterpart = vdmu::findClone(*m_forward, origin);
    if (origin.isNull() || counterpart.isNull() || origin == counterpart) return;
    enter(origin.ownerId(), counterpart.ownerId());
    std::vector<OdDbIdPair> pairs{OdDbIdPair(origin, counterpart)};
    for (std::size_t i = 0; i < pairs.size(); ++i) pairOwned(OdDbIdPair(pairs[i]), pairs);
    const OdResult result = oddbExchangeStates(pairs, *m_forward, *m_reverse);
    if (result != eOk) {
      throw OdError(result, L"check-in of manager " + origin.getHandle().ascii());
    }
  }

 private:
  void enter(const OdDbObjectId& origin, const OdDbObjectId& counterpart) {
    m_forward->assign(OdDbIdPair(origin, counterpart, /*cloned=*/true));
    m_reverse->assign(OdDbIdPair(counterpart, origin, /*cloned=*/true));
  }

  // A manager that the edit has made is made in the origin, too.
  OdDbObjectId managerOfOrigin(const vdmu::VdmManagerLookup& lookup) {
    const OdDbObjectId present = lookup(m_transaction.originBlock(), /*create=*/false);
    if (!present.isNull()) return present;
    const OdDbObjectId copied = lookup(m_transaction.destinationBlock(), /*create=*/false);
    const OdDbObjectId counterpart = vdmu::findClone(m_active, copied);
    if (counterpart.isNull()) return OdDbObjectId::kNull;
    const OdDbObjectId made = lookup(m_transaction.originBlock(), /*create=*/true);
    if (!made.isNull()) enter(made, counterpart);
    return made;
  }

  // The n-th that one of them owns is paired with the n-th of the other. Two of different classes
  // cannot exchange their states.
  void pairOwned(const OdDbIdPair& pair, std::vector<OdDbIdPair>& pairs) {
    const OdDbObjectIdArray ofOrigin = prepare(pair.key());
    const OdDbObjectIdArray ofCounterpart = prepare(pair.value());
    const OdUInt32 count = std::min(ofOrigin.size(), ofCounterpart.size());
    for (OdUInt32 i = 0; i < count; ++i) {
      const OdDbObjectId id = ofOrigin[i];
      const OdDbObjectId other = ofCounterpart[i];
      if (id.isNull() || other.isNull() || id == other) continue;
      enter(id, other);
      const bool canExchange =
          !id.isErased() && !other.isErased() && id.objectClass() == other.objectClass();
      if (canExchange && m_walked.insert(id).second) pairs.emplace_back(id, other);
    }
  }

  /// The object is about to get another state; gives what it owns.
  static OdDbObjectIdArray prepare(const OdDbObjectId& id) {
    const OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
    object->setOdDbObjectIdsInFlux();
    return vdmu::getOwnerships(object);
  }

  const OdDbLongTransaction& m_transaction;
  const OdDbIdMapping& m_active;
  OdDbIdMappingPtr m_forward;
  OdDbIdMappingPtr m_reverse;
  std::unordered_set<OdDbObjectId> m_walked;  // a damaged drawing may have a circle
};

}  // namespace

namespace vdmu {

void checkInObjects(OdDbLongTransaction& transaction, const OdArray<OdDbIdPair>& pairs,
                    const std::vector<VdmManagerLookup>& lookups) {
  const OdDbIdMapping* active = transaction.activeIdMap();
  if (active == nullptr) return;
  CheckIn checkIn(transaction, *active);
  checkIn.enterOriginals(pairs);
  for (const VdmManagerLookup& lookup : lookups) checkIn.moveBack(lookup);
}

}  // namespace vdmu
