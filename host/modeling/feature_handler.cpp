// FeatureHandler: the registry of feature classes that the host handles.
#include "host/modeling/feature_handler.h"

#include <algorithm>
#include <vector>

#include "host/naming/name_feature.h"
#include "vdm_db/concrete_features/vdm_diff_feature.h"
#include "vdm_db/concrete_features/vdm_group_feature.h"
#include "vdm_db/concrete_features/vdm_suppress_feature.h"
#include "vdm_db/features/vdm_update_feature_interface.h"

namespace vdm_host {
namespace {

struct HandlerRow {
  const OdRxClass* featureClass;
  MakeFeatureHandler make;
};

std::vector<HandlerRow>& handlerRows() {
  static std::vector<HandlerRow> rows;
  return rows;
}

// Classes, without those derived from them, that have no update of their own.
constexpr OdRxClass* (*kDataClasses[])() = {
    &VdmFeature::desc,         &VdmGroupFeature::desc, &VdmDiffFeature::desc,
    &VdmSuppressFeature::desc, &VdmNameFeature::desc,
};

bool onlyCarriesData(const OdRxClass* featureClass) {
  return std::ranges::any_of(kDataClasses, [&](auto desc) { return desc() == featureClass; }) &&
         featureClass->getX(VdmUpdateFeatureInterface::desc()).isNull();
}

}  // namespace

FeatureHandler::~FeatureHandler() = default;

void registerFeatureHandler(const OdRxClass* featureClass, MakeFeatureHandler make) {
  handlerRows().push_back({featureClass, make});
}

void unregisterFeatureHandler(const OdRxClass* featureClass) {
  std::erase_if(handlerRows(),
                [&](const HandlerRow& row) { return row.featureClass == featureClass; });
}

MakeFeatureHandler featureHandlerOf(const OdRxClass* featureClass) {
  for (const OdRxClass* cls = featureClass; cls != nullptr; cls = cls->myParent()) {
    const auto row = std::ranges::find(handlerRows(), cls, &HandlerRow::featureClass);
    if (row != handlerRows().end()) return row->make;
  }
  return nullptr;
}

bool followsEntities(const OdRxClass* featureClass) {
  return featureHandlerOf(featureClass) == nullptr && !onlyCarriesData(featureClass);
}

}  // namespace vdm_host
