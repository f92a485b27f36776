// VdmFeatureUpdateData: taking away what an update pass has condemned.
#include "vdm_db/update/vdm_feature_update_data.h"

#include <algorithm>

#include "platform/db/database.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_manager_utils.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/update/vdm_feature_guard.h"
#include "vdm_db/update/vdm_feature_subents_to_remove.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_feature_update_data";
constexpr std::size_t kBucketsAfterUse = 8;

// Paths through block references and whole entities are left out.
void collectAllSubentsFromFSPs(const VdmFeatureUpdateData::PathSet& paths,
                               std::vector<OdDbSubentId>& subents) {
  subents.reserve(paths.size());
  for (const OdDbFullSubentPath& path : paths) {
    if (!vdmAssert(path.objectIds().size() == 1, "path.objectIds().size() == 1",
                   "geometry can be removed only with simple paths!", kSource, __LINE__)) {
      continue;
    }
    const OdDbSubentId& subent = path.subentId();
    const bool isNamed = subent.type() != OdDb::kNullSubentType && subent.index() != 0;
    if (!vdmAssert(isNamed, "subent.type() && subent.index()", "subent type must be not empty!",
                   kSource, __LINE__)) {
      continue;
    }
    subents.push_back(subent);
  }
}

bool hasLivingFeature(const OdDbObjectId& entity) {
  const OdDbObjectIdArray features = VdmFeatureManagerUtils::getFeatures(entity, {});
  return std::any_of(features.begin(), features.end(), [](const OdDbObjectId& id) {
    return !id.openAs<VdmDbFeatureData>().isNull();
  });
}

}  // namespace

bool VdmFeatureUpdateData::removeUnusedData(bool geometry) {
  bool removed = geometry && removeUnusedGeometry();
  dropRemovedIds();
  removed |= removeUnusedFeatures();
  removed |= removeUnusedEntities();
  return removed;
}

void VdmFeatureUpdateData::dropRemovedIds() {
  if (m_featuresToRemove.empty()) return;
  OdDbObjectIdArray kept(m_featureIds.size());
  for (const OdDbObjectId& id : m_featureIds) {
    if (!featureMustBeRemoved(id)) kept.append(id);
  }
  m_featureIds.swap(kept);
}

// ---- Geometry

bool VdmFeatureUpdateData::removeUnusedGeometry() {
  // Interfaces may ask for more while they work; what they ask for of new entities is too late.
  std::vector<const IdMap<PathSet>::value_type*> entries;
  entries.reserve(m_entToSubents.size());
  for (const auto& entry : m_entToSubents) entries.push_back(&entry);
  bool removed = false;
  for (const auto* entry : entries) removed |= removeSubentsOf(entry->first, entry->second);
  m_entToSubents.clear();
  m_entToSubents.rehash(kBucketsAfterUse);
  return removed;
}

bool VdmFeatureUpdateData::removeSubentsOf(const OdDbObjectId& entity, const PathSet& paths) {
  OdDbEntityPtr opened = entity.openAs<OdDbEntity>(OdDb::kForWrite);
  if (opened.isNull()) return false;
  VdmFeatureSubentsToRemove record(entity);
  collectAllSubentsFromFSPs(paths, record.subents);
  if (record.subents.empty()) return false;
  record.entity = opened;
  if (m_helper && m_helper->removeSubents(entity, opened, record, /*flag=*/false)) return true;
  return removeSubentsWithFeatures(record);
}

bool VdmFeatureUpdateData::removeUnusedGeometry(VdmFeatureSubentsToRemove& record) {
  const auto found = m_entToSubents.find(record.entityId);
  if (found == m_entToSubents.end()) return false;
  collectAllSubentsFromFSPs(found->second, record.subents);
  return m_helper && removeSubentsWithFeatures(record);
}

bool VdmFeatureUpdateData::removeSubentsWithFeatures(VdmFeatureSubentsToRemove& record) {
  if (record.subents.empty()) return false;
  bool removed = false;
  for (const OdDbObjectId& id : featuresOf(record)) {
    removed |= vdmGuardFeature(id, observer(), [&] {
      const OdSmartPtr<VdmFeature> feature = id.openAs<VdmFeature>();
      const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(feature);
      return !active.isNull() &&
             active->removeSubents(record, feature->getFeatureEntities(-1, /*filtered=*/false));
    });
    if (record.subents.empty()) break;
  }
  return removed;
}

// The features that asked for any of the record's subentities.
VdmFeatureUpdateData::IdSet VdmFeatureUpdateData::featuresOf(
    const VdmFeatureSubentsToRemove& record) const {
  IdSet features;
  for (const OdDbSubentId& subent : record.subents) {
    const OdDbFullSubentPath path(record.entityId, subent);
    const auto found = m_subentToFeatures.find(path);
    if (found == m_subentToFeatures.end()) {
      vdmcCallAssert("false", "nobody asked to remove " + vdmu::formatFullSubentPath(path, true),
                     kSource, __LINE__);
      continue;
    }
    features.insert(found->second.begin(), found->second.end());
  }
  return features;
}

// ---- Features and entities

bool VdmFeatureUpdateData::removeUnusedFeatures() {
  bool removed = false;
  for (const OdDbObjectId& id : m_featuresToRemove) {
    const bool isErasedNow = vdmGuardFeature(id, observer(), [&] {
      const OdDbObjectPtr carrier = id.openObject(OdDb::kForWrite);
      if (carrier.isNull() || carrier->isErased()) return false;
      OdDbTransaction whole(carrier->database());  // what it owns is erased with it, or nothing
      carrier->erase();
      if (carrier->isErased()) whole.commit();
      return carrier->isErased();
    });
    if (!isErasedNow) continue;
    removed = true;
    if (observer() != nullptr) observer()->featureCondemned(id);
  }
  m_featuresToRemove.clear();
  return removed;
}

bool VdmFeatureUpdateData::removeUnusedEntities() {
  bool removed = false;
  for (const OdDbObjectId& id : m_entitiesToCheck) {
    const OdDbObjectPtr entity = id.openObject(OdDb::kForWrite);
    if (entity.isNull() || entity->isErased() || hasLivingFeature(id)) continue;
    removed |= entity->erase() == eOk;
  }
  m_entitiesToCheck.clear();
  return removed;
}
