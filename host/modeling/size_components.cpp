// A step of the update: components whose dimensions expressions give get their tools.
#include "host/modeling/component_size_feature.h"
#include "host/modeling/model_update_context.h"
#include "host/modeling/model_update_steps.h"
#include "platform/entities/block_reference.h"

namespace vdm_host {
namespace {

OdStatus sizeComponent(const OdDbObjectId& id) {
  const VdmComponentSizeFeaturePtr feature =
      VdmComponentSizeFeature::cast(VdmFeature::open(id).get());
  if (feature.isNull() || feature->blockId().openObject().isNull()) return {};
  return resizeComponent(feature->blockId(), feature->sizes());
}

/// Tools of inserts with sizes of their own are made when they cut; what cannot be one is refused
/// before anything is done.
OdStatus checkInsert(const OdDbObjectId& id) {
  const VdmComponentFeaturePtr component = openComponent(id);
  const auto insert = component->insertId().openAs<OdDbBlockReference>();
  const std::optional<ToolForm> form =
      insert.isNull() ? std::nullopt : formOf(insert->blockTableRecord());
  if (!form) return {};
  ToolForm own;
  OdStatus status = withSizes(*form, component->sizes(), own);
  if (!status.ok()) status.text = L"feature \"" + component->name() + L"\": " + status.text;
  return status;
}

}  // namespace

OdStatus sizeComponents(ModelUpdateContext& context) {
  for (const OdDbObjectId& id : context.sizeFeatures) {
    if (OdStatus status = sizeComponent(id); !status.ok()) return status;
  }
  for (const OdDbObjectId& id : context.sizedInserts) {
    if (OdStatus status = checkInsert(id); !status.ok()) return status;
  }
  return {};
}

}  // namespace vdm_host
