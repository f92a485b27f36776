// Registration of the room's classes and extensions.
#include "host/modeling/register_modeling.h"

#include <memory>

#include "host/modeling/component_handler.h"
#include "host/modeling/component_interface.h"
#include "host/modeling/component_size_feature.h"
#include "host/modeling/update_helper.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_db_naming_policy_pe.h"
#include "vdm_db/features/vdm_feature_color_pe.h"
#include "vdm_db/features/vdm_feature_colors.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_pe.h"
#include "vdm_db/update/vdm_db_feature_manager_pe.h"
#include "vdm_db/update/vdm_feature_update_data.h"

namespace vdm_host {
namespace {

class HelperFactory : public VdmDbFeatureManagerPE {
 public:
  OdSharedPtr<VdmFeatureUpdateDataHelper> createHelper(VdmDbFeatureManager* /*manager*/,
                                                       VdmFeatureUpdateData& data) override {
    return OdSharedPtr<VdmFeatureUpdateDataHelper>(new UpdateHelper(data));
  }
};

/// Makers of components name their features after the kind of the block. This names all other
/// features: by the class name without its prefix and ending.
class NamingPolicy : public VdmDbNamingPolicyPE {
 public:
  OdString displayName(const OdRxClass* cls) const override { return baseName(cls); }
  OdString baseName(const OdRxClass* cls) const override {
    if (cls == VdmComponentFeature::desc()) return OdString(L"Component");
    OdString name = cls->name();
    if (name.left(3) == OdString(L"Vdm")) name = name.mid(3);
    const OdString ending(L"Feature");
    const int length = static_cast<int>(name.getLength()) - static_cast<int>(ending.getLength());
    if (length > 0 && name.mid(length) == ending) name = name.left(length);
    return name;
  }
};

/// Base faces blue, openings orange.
class ComponentColors : public VdmFeatureColorPE {
 public:
  bool overrideColor(int mask, OdCmEntityColor& color) override {
    if (mask == VdmComponentFeature::kBaseFaceMask) {
      color = OdCmEntityColor::fromRGB(90, 140, 210);
    } else if (mask == VdmComponentFeature::kOpeningMask) {
      color = OdCmEntityColor::fromRGB(230, 140, 40);
    } else {
      return false;
    }
    return true;
  }
};

/// Every change of an entity matters; transforms are left as they were asked for.
class ModelObjectExtension : public VdmDbObjectPE {
 public:
  bool entityChanged(OdDbObject* /*entity*/, OdDbObjectId /*self*/) override { return true; }
  void transformAdded(OdDbDatabase* /*database*/, OdDbObjectId* /*attachedEntity*/,
                      OdGeMatrix3d* /*transform*/, bool* /*isOpen*/) override {}
};

std::unique_ptr<FeatureHandler> makeComponentHandler(UpdateHelper& helper) {
  return std::make_unique<ComponentHandler>(helper);
}

bool featureColorsOn() { return true; }

int& registrations() {
  static int count = 0;
  return count;
}

struct ExtensionRow {
  OdRxClass* (*target)();
  OdRxClass* (*protocol)();
  OdRxObjectPtr (*make)();
};

template <class Target, class Protocol, class Extension>
constexpr ExtensionRow rowOf() {
  return {&Target::desc, &Protocol::desc,
          [] { return OdRxObjectPtr(OdRxObjectImpl<Extension>::createObject()); }};
}

constexpr ExtensionRow kExtensions[] = {
    rowOf<VdmDbFeatureManager, VdmDbFeatureManagerPE, HelperFactory>(),
    rowOf<VdmDbFeatureManager, VdmDbNamingPolicyPE, NamingPolicy>(),
    rowOf<VdmComponentFeature, VdmFeatureColorPE, ComponentColors>(),
    rowOf<VdmComponentFeature, VdmUpdateFeatureInterface, VdmComponentInterface>(),
    rowOf<VdmDbObject, VdmDbObjectPE, ModelObjectExtension>(),
};

}  // namespace

void registerModeling() {
  if (registrations()++ > 0) return;
  VdmDbInsertReactor::rxInit();
  VdmComponentFeature::rxInit();
  VdmComponentSizeFeature::rxInit();
  VdmComponentInterface::rxInit();
  for (const ExtensionRow& row : kExtensions) row.target()->addX(row.protocol(), row.make());
  registerFeatureHandler(VdmComponentFeature::desc(), &makeComponentHandler);
  VdmUpdateFeatureInterface::registerComponentFeature(VdmComponentFeature::desc());
  vdmu::GetFEATURECOLORS::setImpl(&featureColorsOn);
}

void unregisterModeling() {
  if (registrations() == 0 || --registrations() > 0) return;
  vdmu::GetFEATURECOLORS::setImpl(nullptr);
  VdmUpdateFeatureInterface::unregisterComponentFeature(VdmComponentFeature::desc());
  unregisterFeatureHandler(VdmComponentFeature::desc());
  for (auto row = std::rbegin(kExtensions); row != std::rend(kExtensions); ++row) {
    row->target()->delX(row->protocol());
  }
  VdmComponentInterface::rxUninit();
  VdmComponentSizeFeature::rxUninit();
  VdmComponentFeature::rxUninit();
  VdmDbInsertReactor::rxUninit();
}

}  // namespace vdm_host
