// What model objects and reactors of features need of the managers of a block.
#include "vdm_db/model/vdm_block_managers.h"

#include "platform/base/error.h"
#include "platform/rx/rx_class.h"

namespace {
VdmModelObjectRegistry::Finder g_finder = nullptr;
}

VdmModelObjectRegistry::~VdmModelObjectRegistry() = default;
VdmFeatureRegistry::~VdmFeatureRegistry() = default;

VdmModelObjectRegistry* VdmModelObjectRegistry::of(OdDbObject* object) {
  return dynamic_cast<VdmModelObjectRegistry*>(object);
}

VdmModelObjectRegistry& VdmModelObjectRegistry::required(OdDbObject* object) {
  if (VdmModelObjectRegistry* registry = of(object)) return *registry;
  throw OdError_NotThatKindOfClass(object == nullptr ? OdString() : object->isA()->name(),
                                   L"VdmDbConstraintManager");
}

void VdmModelObjectRegistry::installFinder(Finder finder) { g_finder = finder; }

OdDbObjectId VdmModelObjectRegistry::ofBlock(const OdDbObjectId& block, bool create) {
  return g_finder == nullptr ? OdDbObjectId::kNull : g_finder(block, create);
}

const VdmFeatureRegistry* VdmFeatureRegistry::of(const OdDbObject* object) {
  return dynamic_cast<const VdmFeatureRegistry*>(object);
}
