// Dimensions of a component that expressions give.
#include "host/modeling/component_size_feature.h"

#include "platform/db/database.h"
#include "vdm_db/features/vdm_db_feature_manager.h"

VDM_DEFINE_FEATURE_CLASS(VdmComponentSizeFeature, VdmFeature, L"VdmComponentSizeFeature")

OdDbObjectId VdmComponentSizeFeature::of(const OdDbObjectId& block) {
  if (block.database() == nullptr) return {};
  const auto manager = VdmDbFeatureManager::getInstance(block.database()->getModelSpaceId(),
                                                        /*create=*/false)
                           .openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return {};
  for (const OdDbObjectId& id : manager->featureIds()) {
    const VdmComponentSizeFeaturePtr feature = cast(VdmFeature::open(id).get());
    if (!feature.isNull() && feature->m_block == block) return id;
  }
  return {};
}

void VdmComponentSizeFeature::bind(const OdDbObjectId& block) {
  assertWritable();
  m_block = block;
}

void VdmComponentSizeFeature::dropSize(const OdString& name) {
  assertWritable();
  m_sizes.drop(name);
}

OdResult VdmComponentSizeFeature::onPropertyModified(const OdString& key, double value) {
  assertWritable();
  m_sizes.set(key, value);
  return eOk;
}

bool VdmComponentSizeFeature::isRequiredDependency(int /*mask*/, int /*tag*/) { return false; }

void VdmComponentSizeFeature::subMapProperties(VdmProperties& bag) {
  bag.mapProperty(OdString(L"Block"), &m_block, OdDb::kSoftPointerRef);
  m_sizes.map(bag);
}
