// VdmSimpleFeatureInterface: the answers of a feature that leaves everything as it is.
#include "vdm_db/features/vdm_simple_feature_interface.h"

#include "vdm_db/features/vdm_feature.h"

using Interface = VdmSimpleFeatureInterface;

Interface::~VdmSimpleFeatureInterface() = default;

// ---- The pass

Interface::OpeningFaces Interface::openingFaces() const { return {}; }
bool Interface::prepareUpdateData(VdmFeatureUpdateData& /*data*/, bool /*forced*/) { return false; }
bool Interface::removeSubents(VdmFeatureSubentsToRemove& /*record*/,
                              const OdDbFullSubentPathArray& /*paths*/) {
  return false;
}
bool Interface::initAfterUpdate(VdmFeatureUpdateData& /*data*/) { return false; }
VdmSolidOccurrences Interface::subtractSolids(const OdDbObjectId& /*block*/, bool /*forWrite*/) {
  return {};
}
VdmSolidOccurrences Interface::uniteSolids(const OdDbObjectId& /*block*/, bool /*forWrite*/) {
  return {};
}
bool Interface::needsBaseFaces() const { return false; }

// ---- References and own objects

bool Interface::isRequiredDependency(int /*mask*/, int /*tag*/) { return false; }
bool Interface::isReactorFiltered(const VdmDbPersIdReactor* /*reactor*/) const { return false; }
bool Interface::erasesOwnObjects() const { return false; }
OdDbObjectIdArray Interface::ownObjectIds() const {
  const OdDbObjectId carrier = objectId();
  return carrier.isNull() ? OdDbObjectIdArray() : OdDbObjectIdArray{carrier};
}

// ---- Making and cloning

bool Interface::createForEntity(VdmDbFeatureManager* /*manager*/,
                                const OdDbFullSubentPath& /*basePath*/,
                                const OdDbObjectId& /*entity*/, VdmFeatureUpdateData& /*data*/) {
  return true;
}
void Interface::setEntities(const OdDbObjectIdArray& /*entities*/) {}
void Interface::attachToSolid(VdmDbFeatureManager* /*manager*/, const OdDbObjectId& /*solid*/) {}
void Interface::onDeepClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                            bool flag) const {
  feature()->onDeepClone(mapping, source, clone, flag);
}
void Interface::onWblockClone(OdDbIdMapping& mapping, OdDbObject* source, OdDbObject* clone,
                              bool flag) const {
  feature()->onWblockClone(mapping, source, clone, flag);
}

// ---- Components

OdString Interface::componentName() const { return {}; }
OdString Interface::extensionValue() const { return {}; }
void Interface::applyExtension(OdDbObject* /*object*/, const OdString& /*value*/) {}
