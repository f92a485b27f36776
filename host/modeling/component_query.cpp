// Finding components and managers in a drawing.
#include "host/modeling/component_query.h"

#include "host/naming/reference_record.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"

namespace vdm_host {

OdDbObjectIdArray featureManagers(OdDbDatabase* database) {
  OdDbObjectIdArray managers;
  const OdDbBlockTablePtr table = database->getBlockTableId().safeOpenAs<OdDbBlockTable>();
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) {
    const OdDbObjectId manager =
        VdmDbFeatureManager::getInstance(it->getRecordId(), /*create=*/false);
    if (!manager.isNull()) managers.append(manager);
  }
  return managers;
}

OdDbObjectIdArray componentsOfSolid(const OdDbObjectId& solid) {
  OdDbObjectIdArray components;
  const OdDbObjectId managerId = VdmDbFeatureManager::getInstance(solid.ownerId(), false);
  const VdmDbFeatureManagerPtr manager = managerId.openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return components;
  for (const OdDbObjectId& id : manager->featureIds()) {
    const VdmComponentFeaturePtr component = VdmComponentFeature::cast(VdmFeature::open(id).get());
    if (!component.isNull() && component->solidId() == solid) components.append(id);
  }
  return components;
}

OdDbObjectId componentOf(const OdDbObjectId& insertOrFeature) {
  const OdDbObjectPtr object = insertOrFeature.openObject();
  if (object.isNull()) return {};
  if (!VdmComponentFeature::cast(object.get()).isNull()) return insertOrFeature;
  for (const OdDbObjectId& id : object->getPersistentReactors()) {
    if (id.objectClass() == VdmDbInsertReactor::desc() && !id.isErased()) return id.ownerId();
  }
  return {};
}

OdDbObjectIdArray componentsOfBlock(const OdDbObjectId& block) {
  OdDbObjectIdArray components;
  const OdDbBlockTableRecordPtr record = block.openAs<OdDbBlockTableRecord>();
  if (record.isNull()) return components;
  for (const OdDbObjectId& insert : record->getBlockReferenceIds()) {
    const OdDbObjectId component = componentOf(insert);
    if (!component.isNull()) components.append(component);
  }
  return components;
}

OdUInt32 resolvedIndexOf(const OdDbObjectId& reference) {
  const VdmDbObjectDependencyPtr dependency = reference.openAs<VdmDbObjectDependency>();
  if (dependency.isNull() || isUnresolvedIndex(dependency->subentId().index())) return 0;
  return static_cast<OdUInt32>(dependency->subentId().index());
}

std::vector<std::pair<int, OdUInt32>> openingFacesOf(const VdmComponentFeature& component) {
  std::vector<std::pair<int, OdUInt32>> faces;
  for (const auto& [toolFace, references] : component.openingDependencies()) {
    for (const OdDbObjectId& id : references) {
      const OdUInt32 face = resolvedIndexOf(id);
      if (face != 0) faces.emplace_back(toolFace, face);
    }
  }
  return faces;
}

void dropUnwatchedReferences(const OdDbObjectId& block) {
  const OdDbObjectId id = VdmDbPersIdManager::getInstance(block, /*create=*/false);
  const VdmDbPersIdManagerPtr reader = id.openAs<VdmDbPersIdManager>();
  if (reader.isNull()) return;
  const OdDbObjectIdArray unwatched = reader->getUnusedDependencies();
  if (unwatched.isEmpty()) return;
  id.safeOpenAs<VdmDbPersIdManager>(OdDb::kForWrite)->removeDependencies(unwatched);
}

}  // namespace vdm_host
