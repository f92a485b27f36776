// VdmNameFeature: a name that a user gave to a persistent reference.
#include "host/naming/name_feature.h"

#include "vdm_db/features/vdm_db_feature_manager.h"

VDM_DEFINE_FEATURE_CLASS(VdmNameFeature, VdmFeature, L"VdmNameFeature")

const OdArray<int>& VdmNameFeature::masks() const { return singleEntityMasks(); }

bool VdmNameFeature::isRequiredDependency(int /*mask*/, int /*tag*/) { return false; }

OdDbObjectIdArray VdmNameFeature::referenceIds() const {
  return getDependencies(kMask, /*filtered=*/false);
}

namespace vdm_host {

OdResult nameReference(const OdDbFullSubentPath& path, const OdString& name,
                       OdDbObjectId& feature) {
  if (path.objectIds().isEmpty()) return eInvalidInput;
  const OdDbObjectId managerId =
      VdmDbFeatureManager::getInstance(path.objectIds().first().ownerId(), /*create=*/true);
  const bool isNamed = !name.isEmpty();
  const OdDbObjectId made =
      managerId.safeOpenAs<VdmDbFeatureManager>(OdDb::kForWrite)
          ->createFeatureData(VdmNameFeature::desc(), isNamed ? name : OdString(L"Reference"),
                              /*numberGiven=*/!isNamed, /*trim=*/true);
  const VdmNameFeaturePtr object = VdmNameFeature::cast(VdmFeature::open(made, OdDb::kForWrite));
  if (object.isNull()) return eKeyNotFound;
  OdDbFullSubentPathArray paths;
  paths.append(path);
  OdArray<VdmFeatureGroupFaces> groups;
  groups.append(VdmFeatureGroupFaces(VdmNameFeature::kMask, paths));
  object->init(groups);
  if (object->referenceIds().isEmpty()) return eKeyNotFound;
  feature = made;
  return eOk;
}

}  // namespace vdm_host
