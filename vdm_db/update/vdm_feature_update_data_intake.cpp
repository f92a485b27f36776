// VdmFeatureUpdateData: which features take part in an update pass, and how they prepare.
#include "vdm_db/update/vdm_feature_update_data.h"

#include <algorithm>
#include <span>

#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_feature_read_ahead.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_due_features.h"
#include "vdm_db/update/vdm_feature_guard.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"

namespace {

bool wasMoved(const VdmDependenciesReplacementMap& map, const OdDbObjectId& object) {
  const VdmDependenciesReplacementMap::TransformedData* entry = map.findTransformedObject(object);
  return entry != nullptr && !entry->isMarked;
}

// The host when it has changed entities to ask for; null otherwise.
const VdmUpdateHost* hostWithChanges(const VdmUpdateContext& context) {
  return context.host != nullptr && context.host->hasChangedEntities() ? context.host : nullptr;
}

// The outermost insert of a reference or the entity in it changed.
bool isConcerned(const VdmUpdateHost& host, const VdmFeature& feature,
                 const VdmDbObjectDependency& dependency) {
  const auto& path = dependency.compoundId().elements();
  return std::any_of(path.begin(), path.end(), [&](const VdmCompoundObjectId::Element& element) {
    return !element.id.isNull() && host.concerns(feature, element.id);
  });
}

// A reactor that refers to no geometry: it need not be opened.
bool isOtherReactor(const OdRxClass* cls) {
  return cls != VdmDbPersIdReactor::desc() && cls != nullptr &&
         cls->isDerivedFrom(VdmDbFeatureReactor::desc()) &&
         !cls->isDerivedFrom(VdmDbPersIdReactor::desc());
}

/// How many different entities a feature refers to, as far as it matters: none, one or several.
class EntityCount {
 public:
  void add(const OdDbObjectId& entity) {
    if (m_any && entity != m_first) m_several = true;
    m_first = entity;
    m_any = true;
  }
  [[nodiscard]] bool isExactlyOne() const { return m_any && !m_several; }

 private:
  OdDbObjectId m_first;
  bool m_any = false;
  bool m_several = false;
};

}  // namespace

bool VdmFeatureUpdateData::init(const OdDbObjectIdArray& ids,
                                const VdmDependenciesReplacementMap& map, bool force) {
  if (ids.isEmpty()) return false;
  m_replacementMap = &map;
  if (force) m_featureIds.reserve(m_featureIds.size() + ids.size());
  const std::span<const OdDbObjectId> all(ids.begin(), ids.size());
  constexpr std::size_t kPortion = VdmFeatureReadAhead::kPortion;
  for (std::size_t first = 0; first < all.size(); first += kPortion) {
    const auto portion = all.subspan(first, std::min(kPortion, all.size() - first));
    VdmFeatureReadAhead::read(portion);
    for (const OdDbObjectId& id : portion) takeIn(id, force);
  }
  if (m_helper) collectByEntity();
  return true;
}

void VdmFeatureUpdateData::initDue(VdmDueFeatures& due, const VdmDependenciesReplacementMap& map) {
  m_replacementMap = &map;
  OdUInt32 numOpened = 0;
  for (OdDbObjectId id = due.next(); !id.isNull(); id = due.next()) {
    if (takeIn(id, /*force=*/false)) ++numOpened;
  }
  if (const OdUInt32 others = due.numPassedOver(numOpened); observer() != nullptr && others != 0) {
    observer()->featuresPassedOver(others);
  }
  if (m_helper) collectByEntity();
}

// False when it does not open.
bool VdmFeatureUpdateData::takeIn(const OdDbObjectId& id, bool force) {
  OdSmartPtr<VdmFeature> feature = VdmFeature::open(id);
  if (feature.isNull()) return false;
  try {
    takeInOpen(id, feature, force);
  } catch (...) {
    vdmReportRaisedError(id, observer());
    withdrawFeature(id);
  }
  return true;
}

void VdmFeatureUpdateData::takeInOpen(const OdDbObjectId& id, OdSmartPtr<VdmFeature>& feature,
                                      bool force) {
  const Intake intake = decideIntake(feature, force);
  if (!intake.taken) {
    if (observer() != nullptr) observer()->featureSkipped(id);
    return;
  }
  if (observer() != nullptr) observer()->featureTaken(id, intake.reason);
  m_featureIds.append(id);
  prepareFeature(id, feature, intake.forced);
}

VdmFeatureUpdateData::Intake VdmFeatureUpdateData::decideIntake(const VdmFeature* feature,
                                                                bool force) {
  if (force) return {true, true, VdmUpdateReason::kForced};
  if (constraintsWereCalculated()) {
    bool recalculated = false;
    if (feature->hasChanges(recalculated) || recalculated) {
      return {true, true, VdmUpdateReason::kConstraint};
    }
  }
  Intake intake;
  intake.taken = featureHasChanges(feature, intake.reason);
  return intake;
}

// Runs over every feature of a block in every pass: allocates nothing, and opens for read only.
bool VdmFeatureUpdateData::featureHasChanges(const VdmFeature* feature, VdmUpdateReason& reason) {
  const auto because = [&reason](VdmUpdateReason cause) {
    reason = cause;
    return true;
  };
  const VdmDependenciesReplacementMap& map = *m_replacementMap;
  const VdmUpdateHost* host = hostWithChanges(context());
  EntityCount entities;
  const bool hasReplaced = map.numReplaced() != 0;
  const bool hasClones = !map.clones().empty();
  for (const OdDbObjectId& reactorId : feature->reactorIds()) {
    if (isOtherReactor(reactorId.objectClass())) continue;
    const VdmDbPersIdReactorPtr reactor = vdmOpenMostly<VdmDbPersIdReactor>(reactorId);
    if (reactor.isNull()) continue;
    for (const OdDbObjectId& id : reactor->persIdsRef()) {
      if (hasReplaced && map.contains(id)) return because(VdmUpdateReason::kDependencyReplaced);
      if (hasClones && map.containsClone(id)) return because(VdmUpdateReason::kDependencyCloned);
      const VdmDbObjectDependencyPtr dependency = vdmOpenMostly<VdmDbObjectDependency>(id);
      if (dependency.isNull()) continue;
      const OdDbObjectId entity = dependency->getInsertId();
      entities.add(entity);
      if (wasMoved(map, entity)) return because(VdmUpdateReason::kEntityTransformed);
      if (host != nullptr && isConcerned(*host, *feature, *dependency)) {
        return because(VdmUpdateReason::kEntityChanged);
      }
    }
  }
  if (!entities.isExactlyOne()) {
    return !context().isFollowUp && because(VdmUpdateReason::kSeveralEntities);
  }
  return openingWasMoved(feature) && because(VdmUpdateReason::kInsertTransformed);
}

// The extension of the class, bound to no feature. Features of one class mostly come together.
const VdmUpdateFeatureInterface* VdmFeatureUpdateData::patternOf(const OdRxClass* cls) const {
  if (cls != m_patternClass) {
    m_patternClass = cls;
    m_pattern = VdmUpdateFeatureInterface::cast(cls->getX(VdmUpdateFeatureInterface::desc()).get());
  }
  return m_pattern.get();
}

bool VdmFeatureUpdateData::openingWasMoved(const VdmFeature* feature) const {
  if (!m_replacementMap->hasTransformedObjects()) return false;
  // A query makes an object: it is put where the class need not be asked otherwise.
  OdDbObjectId stored;
  const VdmUpdateFeatureInterface* pattern = patternOf(feature->isA());
  if (pattern != nullptr && pattern->storedInsert(*feature, stored) &&
      !wasMoved(*m_replacementMap, stored)) {
    return false;
  }
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(feature);
  return !active.isNull() && wasMoved(*m_replacementMap, active->openingFaces().insertId());
}

void VdmFeatureUpdateData::prepareFeature(const OdDbObjectId& id, OdSmartPtr<VdmFeature>& feature,
                                          bool forced) {
  VdmUpdatePreparation result = VdmUpdatePreparation::kQueued;
  if (feature->prepareUpdateData(*this, forced)) {
    result = VdmUpdatePreparation::kDone;
  } else if (featureMustBeRemoved(id)) {
    m_featureIds.removeLast();
    result = VdmUpdatePreparation::kCondemned;
  } else {
    removeUnusedReactors(feature);
    m_featuresToUpdate.append(feature);
  }
  if (observer() != nullptr) observer()->featurePrepared(id, result);
}

// What the feature gathered before it failed is half of what it wanted: none of it is done. It
// keeps its turn in the repair of references.
void VdmFeatureUpdateData::withdrawFeature(const OdDbObjectId& id) {
  for (auto it = m_subentToFeatures.begin(); it != m_subentToFeatures.end();) {
    it->second.erase(id);
    if (!it->second.empty()) {
      ++it;
      continue;
    }
    const auto paths = m_entToSubents.find(vdmu::getLeafId(it->first));
    if (paths != m_entToSubents.end() && paths->second.erase(it->first) != 0 &&
        paths->second.empty()) {
      m_entToSubents.erase(paths);
    }
    it = m_subentToFeatures.erase(it);
  }
  for (auto& [entity, features] : m_entToFeatures) features.erase(id);
  std::erase_if(m_entToFeatures, [](const auto& entry) { return entry.second.empty(); });
  m_featuresToRemove.erase(id);
  m_featureEntitiesMap.erase(id);
  m_reactorsToRemove.erase(id);
  if (m_helper) m_helper->withdrawFeature(id);
}

void VdmFeatureUpdateData::removeUnusedReactors(VdmFeature* feature) {
  if (m_reactorsToRemove.empty()) return;
  const auto found = m_reactorsToRemove.find(feature->getDbObject()->objectId());
  if (found == m_reactorsToRemove.end()) return;
  feature->upgradeOpen();
  for (const OdDbObjectId& reactor : found->second) {
    feature->removeReactor(reactor, /*eraseReactor=*/true);
  }
}

// The helper may add features of entities meanwhile; it does not get those of new entities.
void VdmFeatureUpdateData::collectByEntity() {
  std::vector<const IdMap<IdSet>::value_type*> entries;
  entries.reserve(m_entToFeatures.size());
  for (const auto& entry : m_entToFeatures) entries.push_back(&entry);
  for (const auto* entry : entries) {
    m_helper->collectForEntity(entry->first, entry->second);
    m_helper->collectDependentsForEntity(entry->first, entry->second);
  }
}

void VdmFeatureUpdateData::initGrossData(const OdDbObjectIdArray& ids) {
  m_grossMode = true;
  for (const OdDbObjectId& id : ids) {
    const OdSmartPtr<VdmFeature> feature = id.openAs<VdmFeature>();
    if (feature.isNull()) continue;
    try {
      feature->prepareUpdateData(*this, /*forced=*/true);
    } catch (...) {
      vdmReportRaisedError(id, observer());
      withdrawFeature(id);
    }
  }
}
