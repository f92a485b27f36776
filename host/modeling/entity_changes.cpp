// EntityChanges: which entities an edit and its passes changed, and which features have followed.
#include "host/modeling/entity_changes.h"

#include <algorithm>

#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"

namespace vdm_host {

EntityChanges::EntityChanges(OdDbDatabase* database, const OdSolidJournal& journal)
    : m_database(database), m_journal(journal) {
  m_database->addReactor(this);
}

EntityChanges::~EntityChanges() { m_database->removeReactor(this); }

// ---- The log

std::size_t EntityChanges::count() {
  takeInJournal();
  return m_log.size();
}

void EntityChanges::takeInJournal() {
  const std::span<const OdSolidChange> changes = m_journal.changes();
  for (; m_fromJournal < changes.size(); ++m_fromJournal) {
    const OdDbObjectId& solid = changes[m_fromJournal].solid;
    if (!solid.isNull()) note(solid);
  }
}

void EntityChanges::note(const OdDbObjectId& entity) {
  m_byEntity[entity].push_back(m_log.size());
  m_log.push_back({entity, {}});
}

void EntityChanges::endTurn(const OdDbObjectId& feature) {
  const std::size_t now = count();
  for (; m_turn < now; ++m_turn) m_log[m_turn].feature = feature;
}

bool EntityChanges::isNews(const OdDbObjectId& feature, const OdDbObjectId& entity) const {
  const auto changes = m_byEntity.find(entity);
  if (changes == m_byEntity.end()) return false;
  const auto seen = m_seen.find(feature);
  const std::size_t from = seen == m_seen.end() ? 0 : seen->second;
  const std::vector<std::size_t>& numbers = changes->second;
  return std::any_of(std::lower_bound(numbers.begin(), numbers.end(), from), numbers.end(),
                     [&](std::size_t number) { return m_log[number].feature != feature; });
}

// ---- Motions

std::vector<EntityChanges::Motion> EntityChanges::motions() const {
  std::vector<Motion> moved;
  std::unordered_map<OdDbObjectId, std::size_t> places;
  for (const OdSolidChange& change : m_journal.changes()) {
    if (change.kind != OdSolidChangeKind::kMoved || change.solid.isNull()) continue;
    const auto [place, isNew] = places.try_emplace(change.solid, moved.size());
    if (isNew) moved.push_back({change.solid, {}});
    OdGeMatrix3d& all = moved[place->second].transform;
    all = change.transform * all;
  }
  for (const Motion& before : m_placements) {
    const OdDbBlockReferencePtr insert = before.entity.openAs<OdDbBlockReference>();
    if (!insert.isNull()) {
      moved.push_back({before.entity, insert->blockTransform() * before.transform.inverse()});
    }
  }
  std::erase_if(moved, [](const Motion& motion) { return motion.transform.isIdentity(); });
  return moved;
}

// ---- What the drawing reports

void EntityChanges::objectOpenedForModify(const OdDbDatabase* /*database*/,
                                          const OdDbObject* object) {
  if (!object->isKindOf(OdDbBlockReference::desc())) return;
  const OdDbObjectId id = object->objectId();
  const auto isKnown = [&id](const Motion& known) { return known.entity == id; };
  if (std::any_of(m_placements.begin(), m_placements.end(), isKnown)) return;
  const auto* insert = static_cast<const OdDbBlockReference*>(object);
  m_placements.push_back({id, insert->blockTransform()});
}

// The journal says which solids got another body; their layers and reactors do not matter.
void EntityChanges::objectModified(const OdDbDatabase* /*database*/, const OdDbObject* object) {
  if (object->isErased() || object->isKindOf(OdDb3dSolid::desc())) return;
  if (object->isKindOf(OdDbEntity::desc())) note(object->objectId());
}

void EntityChanges::objectErased(const OdDbDatabase* /*database*/, const OdDbObject* object,
                                 bool erasing) {
  if (erasing && object->isKindOf(OdDbEntity::desc())) note(object->objectId());
}

}  // namespace vdm_host
