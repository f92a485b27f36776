// VdmComponentInterface: how components take part in the update pass.
#include "host/modeling/component_interface.h"

#include <algorithm>

#include "host/modeling/update_helper.h"
#include "host/naming/reference_record.h"
#include "platform/cloning/id_mapping.h"
#include "platform/entities/block_reference.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"
#include "vdm_db/update/vdm_feature_subents_to_remove.h"
#include "vdm_db/update/vdm_feature_update_data.h"

OD_RX_DEFINE(VdmComponentInterface, VdmUpdateFeatureInterface, L"VdmComponentInterface")

using vdm_host::ToolKind;
using vdm_host::UpdateHelper;

namespace {

// The pass erases what its features ask to lose; healing takes all faces of an opening at once.
void takeOff(std::vector<OdDbSubentId>& subents, const OdDbFullSubentPathArray& paths) {
  std::erase_if(subents, [&paths](const OdDbSubentId& subent) {
    return std::any_of(paths.begin(), paths.end(), [&subent](const OdDbFullSubentPath& path) {
      return path.subentId() == subent;
    });
  });
}

}  // namespace

VdmComponentFeaturePtr VdmComponentInterface::component() const {
  return VdmComponentFeature::cast(feature().get());
}

// Faces that the feature refers to and that are there.
OdDbFullSubentPathArray VdmComponentInterface::openingPaths() const {
  OdDbFullSubentPathArray paths;
  for (const OdDbFullSubentPath& path :
       feature()->getFeatureEntities(VdmComponentFeature::kOpeningMask, /*filtered=*/false)) {
    if (path.objectIds().size() == 1 && !vdm_host::isUnresolvedIndex(path.subentId().index())) {
      paths.append(path);
    }
  }
  return paths;
}

VdmUpdateFeatureInterface::OpeningFaces VdmComponentInterface::openingFaces() const {
  const VdmComponentFeaturePtr own = component();
  return {own->solidId(), own->insertId(),
          own->getFeatureEntities(VdmComponentFeature::kBaseFaceMask, /*filtered=*/false)};
}

bool VdmComponentInterface::storedInsert(const VdmFeature& feature, OdDbObjectId& insert) const {
  insert = static_cast<const VdmComponentFeature&>(feature).insertId();
  return true;
}

bool VdmComponentInterface::prepareUpdateData(VdmFeatureUpdateData& data, bool forced) {
  const VdmComponentFeaturePtr own = component();
  VdmUpdateInfo info;
  info.solidId = own->solidId();
  info.insertId = own->insertId();
  if (!data.isGrossMode()) {
    VdmFeatureUpdateDataUtils::FeatureArgs args;
    args.forced = forced;
    const bool isDue = data.getMatchingFaces(this, objectId(), {info.solidId, info.insertId}, args);
    if (data.featureMustBeRemoved(objectId())) return false;
    if (!isDue) return true;
  }
  for (const OdDbFullSubentPath& path : openingPaths()) info.faces.faces.append({path, 0});
  data.fillData(this, objectId(), info);
  return false;
}

bool VdmComponentInterface::removeSubents(VdmFeatureSubentsToRemove& record,
                                          const OdDbFullSubentPathArray& /*paths*/) {
  const VdmComponentFeaturePtr own = component();
  const OdDb3dSolidPtr solid = OdDb3dSolid::cast(record.entity.get());
  if (solid.isNull()) return false;
  takeOff(record.subents, openingPaths());
  const OdModelerBodyPtr cut = own->piece(ToolKind::kCut);
  const OdModelerBodyPtr fill = own->piece(ToolKind::kFill);
  bool changed = false;
  if (cut) changed |= solid->booleanOper(OdModelerBooleanKind::kUnite, {&cut, 1}).ok();
  if (fill) changed |= solid->booleanOper(OdModelerBooleanKind::kSubtract, {&fill, 1}).ok();
  return changed;
}

bool VdmComponentInterface::initAfterUpdate(VdmFeatureUpdateData& data) {
  const auto* helper = dynamic_cast<const UpdateHelper*>(data.helper());
  return helper != nullptr && helper->worked(objectId());
}

bool VdmComponentInterface::createForEntity(VdmDbFeatureManager* /*manager*/,
                                            const OdDbFullSubentPath& basePath,
                                            const OdDbObjectId& entity,
                                            VdmFeatureUpdateData& /*data*/) {
  if (basePath.objectIds().isEmpty()) return false;
  const OdDbObjectId solid = basePath.objectIds()[basePath.objectIds().size() - 1];
  if (solid.openAs<OdDb3dSolid>().isNull()) return false;
  if (entity.openAs<OdDbBlockReference>().isNull()) return false;
  const VdmComponentFeaturePtr own = component();
  own->upgradeOpen();
  own->bind(solid, entity);
  return true;
}

VdmSolidOccurrences VdmComponentInterface::subtractSolids(const OdDbObjectId& block,
                                                          bool /*forWrite*/) {
  return getSubtractorsOnDedicatedLayer(block, /*forWrite=*/false);
}

VdmSolidOccurrences VdmComponentInterface::uniteSolids(const OdDbObjectId& block,
                                                       bool /*forWrite*/) {
  return getAdditionsOnDedicatedLayer(block, /*forWrite=*/false);
}

bool VdmComponentInterface::isRequiredDependency(int /*mask*/, int /*tag*/) { return false; }

bool VdmComponentInterface::isReactorFiltered(const VdmDbPersIdReactor* reactor) const {
  return reactor->hasMask(VdmComponentFeature::kOpeningMask) &&
         !reactor->hasMask(VdmComponentFeature::kBaseFaceMask);
}

OdDbObjectIdArray VdmComponentInterface::ownObjectIds() const {
  const VdmComponentFeaturePtr own = component();
  return own.isNull() ? OdDbObjectIdArray() : own->ownObjectIds();
}

void VdmComponentInterface::onDeepClone(OdDbIdMapping& mapping, OdDbObject* source,
                                        OdDbObject* clone, bool flag) const {
  feature()->onDeepClone(mapping, source, clone, flag);
}

// The references lie in the managers of persistent ids, which clone their own.
void VdmComponentInterface::onWblockClone(OdDbIdMapping& /*mapping*/, OdDbObject* /*source*/,
                                          OdDbObject* /*clone*/, bool /*flag*/) const {}

OdString VdmComponentInterface::componentName() const { return OdString(L"Component"); }
OdString VdmComponentInterface::extensionValue() const { return componentName(); }

// The extension of an object is its class name alone.
void VdmComponentInterface::applyExtension(OdDbObject* /*object*/, const OdString& /*value*/) {}

// createFeature() knows no insert: the feature stays without work until it is bound to one.
void VdmComponentInterface::setEntities(const OdDbObjectIdArray& /*entities*/) {}
void VdmComponentInterface::attachToSolid(VdmDbFeatureManager* /*manager*/,
                                          const OdDbObjectId& /*solid*/) {}
