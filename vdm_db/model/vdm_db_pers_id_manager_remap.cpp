// VdmDbPersIdManager while geometry is computed anew: moving, splitting, merging and removing
// persistent ids.
//
// Features hold ids of dependencies, never places. A remap therefore changes the places of the ids
// (updatePairs), and writes into the replacement map which ids replace which; it does not touch the
// features, which exchange their references from the map in the update pass.
//
//   updatePairs   gives each dependency its new place
//   split         makes one dependency for each place of a subentity that became several:
//                 old -> {new, new, ...}
//   finishRemap   takes replaced dependencies out of the list, and makes one new dependency for
//                 each place to which several refer: each of these -> {new}
//   finishRemap2  merges again what later updates brought together
//
// Replacements form chains: when A was split into B and C, and B was then merged with D into E, the
// map has A -> {B, C}, B -> {E}, D -> {E}. VdmDependenciesReplacementMap::findReplacedWith follows
// them, and a dependency among its own replacements stays, so rings end. Only the second pass also
// writes E in place of B into the entry of A, because its callers read single entries.
//
// When a pass is done, no replaced dependency is listed (but one among its own replacements), at
// most one watched dependency without entry refers to each place, and the model object of each
// listed dependency's entity lists it. Merging makes a new dependency and reuses no member, so that
// every member is replaced in the same way and the order of the members has no influence on the
// features. A pass walks the list a few times and resolves each watched path once, with hashed
// groups: its cost is linear in the number of dependencies.
#include "vdm_db/model/vdm_db_pers_id_manager.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager_impl.h"
#include "vdm_db/model/vdm_db_pers_id_manager_pe.h"
#include "vdm_db/references/vdm_path_hash.h"
#include "vdm_db/references/vdm_path_utils.h"

using ReplacementMap = VdmDependenciesReplacementMap;

// ---- Moving

bool VdmDbPersIdManager::updatePairs(const OdDbObjectIdArray& ids,
                                     const OdDbFullSubentPathArray& paths) {
  if (ids.size() != paths.size()) {
    throw OdError(eInvalidInput,
                  OdString().format(L"%u dependencies and %u paths", ids.size(), paths.size()));
  }
  OdArray<OdUInt32> absent;
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    if (!implForRead().dependencies.contains(ids[i])) absent.append(i);
  }
  const VdmDbPersIdManagerPEPtr host = VdmDbPersIdManagerPE::cast(this);
  if (host.isNull()) return false;
  if (absent.isEmpty() || absent.size() == paths.size()) {
    updateAll(host, ids, paths);
    return absent.isEmpty();
  }
  OdDbObjectIdArray knownIds;
  OdDbFullSubentPathArray knownPaths;
  OdUInt32 next = 0;
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    if (next < absent.size() && absent[next] == i) {
      ++next;
      continue;
    }
    knownIds.append(ids[i]);
    knownPaths.append(paths[i]);
  }
  updateAll(host, knownIds, knownPaths);
  return false;
}

void VdmDbPersIdManager::updateAll(VdmDbPersIdManagerPE* host, const OdDbObjectIdArray& ids,
                                   const OdDbFullSubentPathArray& paths) {
  ensureModelObjects(paths);
  OdDbObjectIdArray entitiesBefore(ids.size());
  for (OdUInt32 i = 0; i < ids.size(); ++i) {
    const VdmDbObjectDependencyPtr dependency = ids[i].openAs<VdmDbObjectDependency>();
    entitiesBefore.append(dependency.isNull() ? OdDbObjectId::kNull : dependency->getInsertId());
  }
  for (OdUInt32 i = 0; i < ids.size(); ++i) host->updateDependency(this, ids[i], paths[i]);
  relist(ids, entitiesBefore);
}

// ---- Splitting

OdDbObjectIdArray VdmDbPersIdManager::split(OdDbObjectId dependencyId,
                                            const OdDbFullSubentPathArray& paths,
                                            ReplacementMap& map) {
  const VdmDbObjectDependencyPtr dependency = dependencyId.openAs<VdmDbObjectDependency>();
  if (dependency.isNull()) return {};
  OdDbFullSubentPath present;  // resolving it loads the external drawings on the path
  dependency->getLinkObject(present, /*openErased=*/true);
  if (paths.size() < 2 || !dependency->isWatched()) return {dependencyId};
  OdDbObjectIdArray ids(paths.size());
  for (const OdDbFullSubentPath& path : paths) ids.append(addClone(dependency, path));
  appendIds(ids);
  map.append(dependencyId, ReplacementMap::IdSet(ids.begin(), ids.end()));
  attach(ids);
  return ids;
}

OdDbObjectId VdmDbPersIdManager::addClone(const VdmDbObjectDependency* source,
                                          const OdDbFullSubentPath& path) {
  assertWriteEnabled(/*autoUndo=*/false);
  return database()->addOdDbObject(source->doClone(path), objectId());
}

// ---- Finishing

OdResult VdmDbPersIdManager::finishRemap(ReplacementMap& map) {
  assertWriteEnabled(/*autoUndo=*/false);
  OdDbObjectIdArray removed = cleanReplaced(map);
  if (mergeEqual(map, /*isSecondPass=*/false)) removed.append(cleanReplaced(map));
  detach(removed);
  attach(m_impl->dependencies.ids());
  return eOk;
}

OdResult VdmDbPersIdManager::finishRemap2(ReplacementMap& map) {
  assertWriteEnabled(/*autoUndo=*/false);
  OdDbObjectIdArray removed;
  if (mergeEqual(map, /*isSecondPass=*/true)) removed = cleanReplaced(map);
  if (VdmDbPersIdManagerPE::cast(this).isNull()) return eOk;
  detach(removed);
  attach(m_impl->dependencies.ids());
  return eOk;
}

// A dependency among its own replacements stays.
OdDbObjectIdArray VdmDbPersIdManager::cleanReplaced(const ReplacementMap& map) {
  OdDbObjectIdArray removed;
  if (map.isEmptyReplacementDeps()) return removed;
  const OdDbObjectIdArray& ids = m_impl->dependencies.ids();
  const OdArray<OdUInt32> positions =
      m_impl->dependencies.positionsWhere([&map](const OdDbObjectId& id) {
        const ReplacementMap::IdSet* by = map.find(id);
        return by != nullptr && by->count(id) == 0;
      });
  for (const OdUInt32 position : positions) removed.append(ids[position]);
  takeOut(positions);
  return removed;
}

namespace {

using Group = std::vector<OdDbObjectId>;

/// Watched dependencies by what they refer to, in the order of first sight. A path into an external
/// drawing that is not loaded cannot be compared and is left out.
class EqualDependencies {
 public:
  void add(const OdDbObjectId& id) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull() || !dependency->isWatched()) return;
    OdDbFullSubentPath path;
    if (dependency->getLinkObject(path, /*openErased=*/false) != vdmu::ePathOk) return;
    const auto [place, isNew] = m_places.try_emplace(path, m_groups.size());
    if (isNew) m_groups.push_back({path, {}});
    m_groups[place->second].second.push_back(id);
  }
  [[nodiscard]] const std::vector<std::pair<OdDbFullSubentPath, Group>>& groups() const {
    return m_groups;
  }

 private:
  std::vector<std::pair<OdDbFullSubentPath, Group>> m_groups;
  std::unordered_map<OdDbFullSubentPath, std::size_t, VdmPathHash> m_places;
};

// The entries of the map in which each id is a replacement.
using Replaced = std::unordered_map<OdDbObjectId, OdDbObjectIdArray>;

Replaced replacedBy(const ReplacementMap& map) {
  Replaced replaced;
  for (const OdDbObjectId& id : map.getAll()) {
    for (const OdDbObjectId& by : *map.find(id)) replaced[by].append(id);
  }
  return replaced;
}

}  // namespace

bool VdmDbPersIdManager::mergeEqual(ReplacementMap& map, bool isSecondPass) {
  EqualDependencies equal;
  for (const OdDbObjectId& id : m_impl->dependencies.ids()) {
    if (!isSecondPass || !map.contains(id)) equal.add(id);
  }
  const Replaced replaced = isSecondPass ? replacedBy(map) : Replaced();
  OdDbObjectIdArray merged;
  for (const auto& [path, members] : equal.groups()) {
    if (members.size() < 2) continue;
    const VdmDbObjectDependencyPtr first = members[0].openAs<VdmDbObjectDependency>();
    const OdDbObjectId id = addClone(first, path);
    merged.append(id);
    for (const OdDbObjectId& member : members) {
      map.append(member, {id});
      const auto entries = replaced.find(member);
      if (entries == replaced.end()) continue;
      for (const OdDbObjectId& entry : entries->second) map.update(entry, member, {id});
    }
  }
  appendIds(merged);
  return !merged.isEmpty();
}

// ---- Removing

bool VdmDbPersIdManager::removeLink(const OdDbFullSubentPath& path, OdLong tag) {
  assertWriteEnabled(/*autoUndo=*/false);
  const auto isOnPath = [&path, tag](const OdDbObjectId& id) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull() || dependency->subentId() != path.subentId()) return false;
    if (tag != 0 && dependency->entityTag() != tag) return false;
    OdDbFullSubentPath present;  // the beginning of a path that leads nowhere is no match
    return dependency->getLinkObject(present, /*openErased=*/true) == vdmu::ePathOk &&
           present == path;
  };
  const OdArray<OdUInt32> positions = m_impl->dependencies.positionsWhere(isOnPath);
  const OdDbObjectIdArray& ids = m_impl->dependencies.ids();
  OdDbObjectIdArray removed(positions.size());
  for (const OdUInt32 position : positions) removed.append(ids[position]);
  takeOut(positions);
  detach(removed);
  return !removed.isEmpty();
}
