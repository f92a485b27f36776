// VdmFeatureUpdateData: the references of features after an update pass.
//
// The map says which dependencies stand for a replaced one. Each reactor of a feature that lists
// the replaced one gets those that stand for it, and is then made to believe that the old one was
// erased: that way the class's own reaction to a lost dependency, down to the end of the feature,
// is the same in both cases. The new ones are added first, so a reactor never runs empty in
// between. An old dependency without persistent reactors left is one that no feature needs.
//
// Afterwards two reactors of one feature may list the same dependencies, where faces merged. The
// first one stays. Groups are compared as sorted lists under a hash of their members, so a feature
// costs one look at each of its dependencies.
#include "platform/base/sort_unique.h"
#include "vdm_db/update/vdm_feature_update_data.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"

namespace {

using IdSet = VdmFeatureUpdateData::IdSet;

/// Groups of ids that were seen already, by a hash over their members.
class SeenGroups {
 public:
  /// True when the group was not there yet.
  bool add(const OdDbObjectIdArray& ids) {
    std::vector<OdDbObjectId> group(ids.begin(), ids.end());
    odSortUnique(group);
    auto [first, last] = m_groups.equal_range(hashOf(group));
    for (; first != last; ++first) {
      if (first->second == group) return false;
    }
    m_groups.emplace(hashOf(group), std::move(group));
    return true;
  }

 private:
  static std::size_t hashOf(const std::vector<OdDbObjectId>& group) {
    std::size_t hash = group.size();
    for (const OdDbObjectId& id : group) {
      hash = hash * 1099511628211ULL ^ vdmu::OdDbObjectIdHash()(id);
    }
    return hash;
  }

  std::unordered_multimap<std::size_t, std::vector<OdDbObjectId>> m_groups;
};

// The reactor may have to be stored: the same members give the same order.
OdDbObjectIdArray inStableOrder(const IdSet& ids) {
  OdDbObjectIdArray ordered(static_cast<OdUInt32>(ids.size()));
  for (const OdDbObjectId& id : ids) ordered.append(id);
  std::sort(ordered.begin(), ordered.end(), vdmu::ObjectIdLess());
  return ordered;
}

bool isReplacedByItself(const OdDbObjectId& dependency, const IdSet& replacements) {
  return replacements.size() == 1 && *replacements.begin() == dependency;
}

}  // namespace

/// The references of one feature.
class VdmFeatureUpdateData::DependencyRemap {
 public:
  DependencyRemap(const VdmDependenciesReplacementMap& map, OdDbObjectIdArray& depsToErase)
      : m_map(map), m_depsToErase(depsToErase) {}

  /// Appends reactors that have come to mean the same as an earlier one to `obsolete`. A feature
  /// that loses a reference that it cannot do without is erased meanwhile.
  void detachDepsToBeErased(const VdmFeature* feature, OdDbObjectIdArray& obsolete) const {
    const OdDbObjectIdArray reactors = feature->reactors();
    SeenGroups seen;
    for (const OdDbObjectId& id : reactors) {
      const VdmDbPersIdReactorPtr reactor = id.openAs<VdmDbPersIdReactor>();
      if (reactor.isNull()) continue;
      for (const OdDbObjectId& dependency : reactor->persIds()) replace(reactor, dependency);
      // Alone, a reactor means the same as no other.
      if (reactor->isErased() || reactors.size() == 1) continue;
      const OdDbObjectIdArray ids = reactor->persIds();
      if (!ids.isEmpty() && !seen.add(ids)) obsolete.append(id);
    }
  }

 private:
  void replace(VdmDbPersIdReactor* reactor, const OdDbObjectId& id) const {
    const IdSet* replacements = m_map.find(id);
    if (replacements == nullptr || isReplacedByItself(id, *replacements)) return;
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull()) return;
    reactor->upgradeOpen();
    reactor->addPersIds(inStableOrder(*replacements));
    reactor->erased(dependency, /*erasing=*/true);
    if (dependency->getPersistentReactors().isEmpty()) m_depsToErase.append(id);
  }

  const VdmDependenciesReplacementMap& m_map;
  OdDbObjectIdArray& m_depsToErase;
};

void VdmFeatureUpdateData::removeUnusedDependencies(OdDbObjectIdArray& depsToErase) {
  const DependencyRemap remap(*m_replacementMap, depsToErase);
  OdDbObjectIdArray obsolete;
  for (const OdDbObjectId& id : m_featureIds) {
    const OdSmartPtr<VdmFeature> feature = id.openAs<VdmFeature>();
    if (feature.isNull()) continue;
    obsolete.clear();
    remap.detachDepsToBeErased(feature, obsolete);
    if (obsolete.isEmpty() || id.isErased()) continue;
    feature->upgradeOpen();
    for (const OdDbObjectId& reactor : obsolete) {
      feature->removeReactor(reactor, /*eraseReactor=*/true);
      if (observer() != nullptr) observer()->reactorDropped(id, reactor);
    }
  }
}
