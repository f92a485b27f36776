// Features that bind entities under one name.
#include "vdm_db/concrete_features/vdm_group_feature.h"

#include "platform/base/error.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/references/vdm_path_utils.h"

VDM_DEFINE_FEATURE_CLASS(VdmGroupFeature, VdmFeature, L"VdmGroupFeature")

namespace {

VdmDbFeatureData& carrierForWrite(VdmFeature* feature) {
  OdDbObject* carrier = feature->getDbObject();
  if (carrier == nullptr) throw OdError(eNotOpenForWrite, OdString("a feature without carrier"));
  return *static_cast<VdmDbFeatureData*>(carrier);
}

}  // namespace

const OdArray<int>& VdmGroupFeature::masks() const { return singleEntityMasks(); }

void VdmGroupFeature::init(const OdDbFullSubentPathArray& paths) {
  carrierForWrite(this).assertWriteEnabled();
  OdArray<VdmFeatureGroupFaces> groups;
  groups.append(VdmFeatureGroupFaces(masks().first(), paths, /*groupTag=*/-1));
  VdmFeature::init(groups);
  setStatus(StatusInitialized);
}

std::unordered_set<OdDbObjectId> VdmGroupFeature::getTopEntities() const {
  std::unordered_set<OdDbObjectId> entities;
  for (const OdDbFullSubentPath& path : getFeatureEntities(/*mask=*/-1, /*filtered=*/true)) {
    const OdDbObjectId entity = vdmu::getInsertId(path);
    if (!entity.isNull()) entities.insert(entity);
  }
  return entities;
}

OdString VdmGroupFeature::description() const {
  OdString description;
  const auto* carrier = static_cast<const VdmDbFeatureData*>(getDbObject());
  if (carrier == nullptr) throw OdError(eNotOpenForRead, OdString("a feature without carrier"));
  carrier->getReadProperties().getProperty(kVdmGroupDescription, description);
  return description;
}

OdResult VdmGroupFeature::setDescription(const OdString& description) {
  carrierForWrite(this).getWriteProperties().setProperty(kVdmGroupDescription, description);
  return eOk;
}
