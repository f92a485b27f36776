// The journal of a remapping run.
//
// Replacements form a graph: an edge leads from a replaced id to each id of its entry. What an id
// became in the end is the set of ids that can be reached from it and have no entry of their own;
// an id that is listed in its own entry also counts as final, since it was kept beside its
// replacements. findReplacedWith walks the graph with a list of ids still to visit and a set of ids
// that were entered. An id is entered once, so the walk ends even where replacements form a ring (a
// ring that nothing leaves has no final ids), and it costs the number of edges that can be reached,
// plus the sort by handles that makes the result the same in every run.
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

#include <algorithm>
#include <vector>

#include "vdm_db/references/vdm_path_utils.h"

namespace {

using IdSet = VdmDependenciesReplacementMap::IdSet;

constexpr std::size_t kFewTransformed = 4;

OdDbObjectIdArray inHandleOrder(OdDbObjectIdArray ids) {
  std::sort(ids.begin(), ids.end(), vdmu::ObjectIdLess());
  return ids;
}

template <class Map>
OdDbObjectId valueOrNull(const Map& map, const OdDbObjectId& key) {
  const auto found = map.find(key);
  return found == map.end() ? OdDbObjectId::kNull : found->second;
}

}  // namespace

// ---- Replacements

bool VdmDependenciesReplacementMap::append(const OdDbObjectId& id, const IdSet& replacements) {
  return m_replacements.try_emplace(id, replacements).second;
}

bool VdmDependenciesReplacementMap::update(const OdDbObjectId& id, const OdDbObjectId& member,
                                           const IdSet& others) {
  const auto entry = m_replacements.find(id);
  if (entry == m_replacements.end() || entry->second.count(member) == 0) return false;
  const IdSet added = others;  // may be the entry's own set
  entry->second.erase(member);
  entry->second.insert(added.begin(), added.end());
  return true;
}

const IdSet* VdmDependenciesReplacementMap::find(const OdDbObjectId& id) const {
  const auto entry = m_replacements.find(id);
  return entry == m_replacements.end() ? nullptr : &entry->second;
}

bool VdmDependenciesReplacementMap::contains(const OdDbObjectId& id, IdSet& out) const {
  const IdSet* replacements = find(id);
  if (replacements == &out) return true;
  out.clear();
  if (replacements == nullptr) return false;
  out = *replacements;
  return true;
}

IdSet VdmDependenciesReplacementMap::getReplacements(const OdDbObjectId& id) const {
  const IdSet* replacements = find(id);
  return replacements == nullptr ? IdSet() : *replacements;
}

OdDbObjectIdArray VdmDependenciesReplacementMap::getAll() const {
  OdDbObjectIdArray ids;
  ids.reserve(static_cast<OdUInt32>(m_replacements.size()));
  for (const auto& entry : m_replacements) ids.append(entry.first);
  return inHandleOrder(ids);
}

bool VdmDependenciesReplacementMap::findReplacedWith(const OdDbObjectId& id,
                                                     OdDbObjectIdArray* out) const {
  if (out != nullptr) out->clear();
  if (find(id) == nullptr) return false;
  if (out == nullptr) return true;
  std::vector<OdDbObjectId> waiting{id};
  IdSet entered{id};
  IdSet last;
  while (!waiting.empty()) {
    const OdDbObjectId replaced = waiting.back();
    waiting.pop_back();
    // Only ids with an entry wait, so that find() cannot fail here.
    for (const OdDbObjectId& by : *find(replaced)) {
      if (by == replaced || find(by) == nullptr) {
        last.insert(by);
      } else if (entered.insert(by).second) {
        waiting.push_back(by);
      }
    }
  }
  for (const OdDbObjectId& each : last) out->append(each);
  *out = inHandleOrder(*out);
  return true;
}

OdDbObjectIdArray VdmDependenciesReplacementMap::getReplacedWith(const OdDbObjectId& id) const {
  OdDbObjectIdArray ids;
  findReplacedWith(id, &ids);
  return ids;
}

// ---- What else happened

OdDbObjectIdArray VdmDependenciesReplacementMap::modifiedEnts() const {
  OdDbObjectIdArray ids;
  ids.reserve(static_cast<OdUInt32>(m_modifiedEnts.size()));
  for (const OdDbObjectId& id : m_modifiedEnts) ids.append(id);
  return inHandleOrder(ids);
}

const VdmDependenciesReplacementMap::TransformedData*
VdmDependenciesReplacementMap::findTransformedObject(const OdDbObjectId& id) const {
  // The hash of an id reads its record, which is far away mostly; an edit moves few objects.
  if (m_transformed.size() <= kFewTransformed) {
    for (const auto& [object, data] : m_transformed) {
      if (object == id) return &data;
    }
    return nullptr;
  }
  const auto entry = m_transformed.find(id);
  return entry == m_transformed.end() ? nullptr : &entry->second;
}

bool VdmDependenciesReplacementMap::addTransformedObject(const OdDbObjectId& id,
                                                         const OdGeMatrix3d& transform,
                                                         bool marked) {
  return m_transformed.try_emplace(id, TransformedData{transform, marked}).second;
}

void VdmDependenciesReplacementMap::instanceToBeErased(OdDbObjectId instance,
                                                       OdDbObjectId blockReference) {
  m_erasedInstances[instance] = blockReference;
}

OdDbObjectId VdmDependenciesReplacementMap::findBRForErasedInstance(OdDbObjectId instance) const {
  return valueOrNull(m_erasedInstances, instance);
}

void VdmDependenciesReplacementMap::appendBtrReloadingPair(const OdDbObjectId& block,
                                                           const OdDbObjectId& before) {
  m_reloadedBlocks[block] = before;
}

OdDbObjectId VdmDependenciesReplacementMap::findBtrBeforeReloading(
    const OdDbObjectId& block) const {
  return valueOrNull(m_reloadedBlocks, block);
}

bool VdmDependenciesReplacementMap::isEmpty() const {
  return m_clones.empty() && m_replacements.empty() && m_modifiedEnts.empty() &&
         m_transformed.empty() && m_erasedInstances.empty() && m_reloadedBlocks.empty() &&
         m_entsToRegen.empty();
}
