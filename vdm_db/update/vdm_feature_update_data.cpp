// VdmFeatureUpdateData: what features gather in an update pass.
#include "vdm_db/update/vdm_feature_update_data.h"

#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_db_assembly_pe.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_db_feature_manager_pe.h"
#include "vdm_db/update/vdm_feature_update_data_helper.h"

namespace {

OdDbBlockTableRecordPtr blockOf(const OdDbBlockReferencePtr& insert) {
  return insert.isNull() ? OdDbBlockTableRecordPtr()
                         : insert->blockTableRecord().openAs<OdDbBlockTableRecord>();
}

bool isSuppressed(const OdDbBlockReferencePtr& insert) {
  return insert->layer().iCompare(kVdmSuppressLayer) == 0;
}

bool isAbsentOrEmpty(const std::map<int, VdmFeatureUpdateDataUtils::Face>* faces) {
  return faces == nullptr || faces->empty();
}

}  // namespace

VdmFeatureUpdateData::VdmFeatureUpdateData(VdmDbFeatureManager* manager) { makeHelper(manager); }
VdmFeatureUpdateData::VdmFeatureUpdateData(VdmDbFeatureManager* manager, VdmUpdateContext& context)
    : m_handedContext(&context) {
  makeHelper(manager);
}
VdmFeatureUpdateData::VdmFeatureUpdateData(const VdmFeatureUpdateData& other) = default;
VdmFeatureUpdateData& VdmFeatureUpdateData::operator=(const VdmFeatureUpdateData& other) = default;
VdmFeatureUpdateData::~VdmFeatureUpdateData() = default;

// The helper may ask for the context while it is made.
void VdmFeatureUpdateData::makeHelper(VdmDbFeatureManager* manager) {
  if (manager == nullptr) return;
  const OdSmartPtr<VdmDbFeatureManagerPE> extension = VdmDbFeatureManagerPE::cast(manager);
  if (!extension.isNull()) m_helper = extension->createHelper(manager, *this);
}

void VdmFeatureUpdateData::clear() {
  VdmFeatureUpdateData cleared(nullptr);
  cleared.m_helper = m_helper;
  cleared.m_handedContext = m_handedContext;
  cleared.m_ownContext.observer = m_ownContext.observer;
  *this = cleared;
}

// ---- Gathering

void VdmFeatureUpdateData::initReactor(const OdDbObjectId& entity) {
  if (entity.isNull() || m_initializedEntities.count(entity) != 0) return;
  const OdDbObjectPtr object = entity.openObject();
  if (object.isNull()) return;
  const bool isFirst = m_initializedEntities.empty();
  m_initializedEntities.insert(entity);
  const OdDbObjectId block = object->ownerId();
  const OdDbObjectId constraintManager =
      VdmDbConstraintManager::getInstanceImpl(block, /*create=*/isFirst, /*link=*/false);
  VdmDbObject::getInstance(entity, constraintManager);
  if (isFirst) VdmDbPersIdManager::getInstance(block, /*create=*/true);
}

void VdmFeatureUpdateData::fillData(VdmUpdateFeatureInterface* updateInterface,
                                    const OdDbObjectId& feature, VdmUpdateInfo& info) {
  if (updateInterface == nullptr) return;
  appendFeatureEntity(feature, info.solidId);
  appendFeatureEntity(feature, info.insertId);
  for (const auto& face : info.faces.faces) appendSubEntityToRemove(feature, face.path);

  const OdDbBlockReferencePtr insert = info.insertId.openAs<OdDbBlockReference>();
  const OdDb3dSolidPtr solid = info.solidId.openAs<OdDb3dSolid>();
  const OdDbBlockTableRecordPtr block = blockOf(insert);
  if (insert.isNull() || solid.isNull() || block.isNull()) {
    appendFeatureToRemove(feature);
    return;
  }
  if (m_grossMode) {
    if (m_helper) m_helper->addGrossData(updateInterface, feature, insert, solid);
    return;
  }
  if (isSuppressed(insert)) return;
  const OdDbObjectId blockId = block->objectId();
  VdmOpeningEntities entities{insert, updateInterface->subtractSolids(blockId, /*forWrite=*/true),
                              updateInterface->uniteSolids(blockId, /*forWrite=*/true), solid};
  if (addCopiesToUpdateData(updateInterface, feature, entities) && !entities.uniters.isEmpty() &&
      updateInterface->needsBaseFaces() && isAbsentOrEmpty(subtrBaseFaceMap(feature))) {
    appendFeatureToRemove(feature);
  }
}

bool VdmFeatureUpdateData::collectFromFeature(VdmFeature* feature, const VdmMatchingFaces& faces,
                                              VdmUpdateInfo& info, bool flag) {
  if (feature == nullptr) return false;
  const OdDbObjectPtr manager = feature->featureManagerId().openObject();
  if (VdmDbFeatureManager::cast(manager).isNull()) return false;
  const OdSmartPtr<VdmDbAssemblyPE> assembly = VdmDbAssemblyPE::cast(manager.get());
  return !assembly.isNull() && assembly->collectFromFeature(feature, faces, *this, info, flag);
}

bool VdmFeatureUpdateData::clearEntity(OdSmartPtr<OdDbEntity>& entity) const {
  return m_helper && m_helper->clearEntity(entity);
}

void VdmFeatureUpdateData::appendSubEntityToRemove(const OdDbObjectId& feature,
                                                   const OdDbFullSubentPath& path) {
  const OdDbObjectId entity = vdmu::getLeafId(path);
  if (entity.isNull()) return;
  m_subentToFeatures[path].insert(feature);
  if (!m_newFeatures.empty() && m_entToSubents.count(entity) == 0) {
    initReactor(vdmu::getInsertId(path));
  }
  m_entToSubents[entity].insert(path);
}

void VdmFeatureUpdateData::appendSubEntitiesToRemove(const OdDbObjectId& feature,
                                                     const OdDbFullSubentPathArray& paths) {
  for (const OdDbFullSubentPath& path : paths) appendSubEntityToRemove(feature, path);
}

void VdmFeatureUpdateData::appendFeatureToRemove(const OdDbObjectId& feature) {
  m_featuresToRemove.insert(feature);
}

void VdmFeatureUpdateData::appendFeatureEntity(const OdDbObjectId& feature,
                                               const OdDbObjectId& entity) {
  initReactor(entity);
  if (!entity.isNull()) m_featureEntitiesMap[feature].append(entity);
}

void VdmFeatureUpdateData::appendReactorsToRemove(const OdDbObjectId& carrier,
                                                  const OdDbObjectIdArray& reactors) {
  m_reactorsToRemove[carrier].append(reactors);
}

void VdmFeatureUpdateData::appendNewFeature(const OdDbObjectId& feature) {
  m_newFeatures.insert(feature);
}

void VdmFeatureUpdateData::appendFeatureToEnt(OdDbObjectId entity, OdDbObjectId feature) {
  m_entToFeatures[entity].insert(feature);
}

void VdmFeatureUpdateData::appendEntityToCheck(const OdDbObjectId& entity) {
  m_entitiesToCheck.insert(entity);
}

void VdmFeatureUpdateData::setBaseFace(OdDbObjectId id, const OdDbFullSubentPath& path) {
  if (m_helper) m_helper->setBaseFace(id, path);
}

bool VdmFeatureUpdateData::addCopiesToUpdateData(VdmUpdateFeatureInterface* updateInterface,
                                                 OdDbObjectId feature,
                                                 VdmOpeningEntities& entities) {
  return m_helper && m_helper->addCopiesToUpdateData(updateInterface, feature, entities);
}

bool VdmFeatureUpdateData::getMatchingFaces(VdmUpdateFeatureInterface* updateInterface,
                                            OdDbObjectId feature,
                                            const VdmFeatureUpdateDataUtils::OpeningIds& opening,
                                            VdmFeatureUpdateDataUtils::FeatureArgs& args) {
  return m_helper && m_helper->getMatchingFaces(updateInterface, feature, opening, args);
}

bool VdmFeatureUpdateData::prepareForSubtract() {
  return m_helper && m_helper->prepareForSubtract();
}
bool VdmFeatureUpdateData::subtractOperation() { return m_helper && m_helper->subtractOperation(); }
bool VdmFeatureUpdateData::unionOperation() { return m_helper && m_helper->unionOperation(); }
bool VdmFeatureUpdateData::acceptSolids() { return !m_helper || m_helper->acceptSolids(); }

// ---- Queries

bool VdmFeatureUpdateData::replacementMapContainsDep(OdDbObjectId dependency) const {
  return m_replacementMap != nullptr && m_replacementMap->contains(dependency);
}

bool VdmFeatureUpdateData::featureMustBeRemoved(const OdDbObjectId& feature) const {
  return m_featuresToRemove.count(feature) != 0;
}

OdDbObjectIdArray VdmFeatureUpdateData::featureEntities(const OdDbObjectId& feature) const {
  const auto found = m_featureEntitiesMap.find(feature);
  return found == m_featureEntitiesMap.end() ? OdDbObjectIdArray() : found->second;
}

bool VdmFeatureUpdateData::hasSolidsModifications() const {
  return !m_entToSubents.empty() || (m_helper && m_helper->hasSolidsModifications());
}

bool VdmFeatureUpdateData::isNewFeature(const OdDbObjectId& feature) const {
  return m_newFeatures.count(feature) != 0;
}

const std::map<int, VdmFeatureUpdateDataUtils::Face>* VdmFeatureUpdateData::subtrBaseFaceMap(
    OdDbObjectId feature) const {
  return m_helper ? m_helper->subtrBaseFaceMap(feature) : nullptr;
}

VdmFeatureUpdateData::SolidsBySource VdmFeatureUpdateData::getSubtractorsOnLayers(
    OdDbObjectId solid) const {
  return m_helper ? m_helper->getSubtractorsOnLayers(solid) : SolidsBySource();
}

VdmFeatureUpdateData::SolidsBySource VdmFeatureUpdateData::getUnitersOnLayers(
    OdDbObjectId solid) const {
  return m_helper ? m_helper->getUnitersOnLayers(solid) : SolidsBySource();
}
