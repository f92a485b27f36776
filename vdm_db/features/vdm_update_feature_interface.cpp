// VdmUpdateFeatureInterface: its place among the extensions, component features, extensions of
// objects.
#include "vdm_db/features/vdm_update_feature_interface.h"

#include "platform/rx/rx_class.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/properties/vdm_properties_pe.h"

OD_RX_DEFINE_ABSTRACT(VdmUpdateFeatureInterface, VdmFeaturePE, L"VdmUpdateFeatureInterface")

namespace {

/// The registered component features, index for index.
struct Registry {
  OdStringArray extensionNames;
  OdStringArray extensionClasses;
};

Registry& registry() {
  static Registry components;
  return components;
}

// The extension on the class itself: bound to no feature.
OdSmartPtr<VdmUpdateFeatureInterface> interfaceOf(const OdRxClass* cls) {
  if (cls == nullptr || !cls->isDerivedFrom(VdmFeature::desc())) return {};
  return VdmUpdateFeatureInterface::cast(cls->getX(VdmUpdateFeatureInterface::desc()));
}

bool hasProperties(const OdDbObject* object) { return !VdmPropertiesPE::cast(object).isNull(); }

void removeFrom(OdStringArray& list, const OdString& text) {
  OdUInt32 index = 0;
  if (list.find(text, index)) list.removeAt(index);
}

void storeFeatureType(OdDbObject* object, const OdString& className) {
  VdmProperties bag;
  bag.readFromDbObject(object);
  bag.removeProperty(kVdmFeatureType);  // whatever its kind
  bag.setProperty(kVdmFeatureType, className);
  bag.writeToDbObject(object);
}

}  // namespace

VdmUpdateFeatureInterface::~VdmUpdateFeatureInterface() = default;

OdSmartPtr<VdmUpdateFeatureInterface> VdmUpdateFeatureInterface::activeOf(
    const VdmFeature* feature) {
  OdSmartPtr<VdmUpdateFeatureInterface> found = cast(feature);
  return !found.isNull() && found->isActive() ? found : OdSmartPtr<VdmUpdateFeatureInterface>();
}

bool VdmUpdateFeatureInterface::storedInsert(const VdmFeature& /*feature*/,
                                             OdDbObjectId& /*insert*/) const {
  return false;
}

// ---- Component features

void VdmUpdateFeatureInterface::registerComponentFeature(OdRxClass* cls) {
  const OdSmartPtr<VdmUpdateFeatureInterface> found = interfaceOf(cls);
  if (found.isNull()) return;
  const OdString name = found->componentName();
  if (name.isEmpty()) return;
  registry().extensionNames.append(name);
  registry().extensionClasses.append(cls->name());
}

void VdmUpdateFeatureInterface::unregisterComponentFeature(OdRxClass* cls) {
  const OdSmartPtr<VdmUpdateFeatureInterface> found = interfaceOf(cls);
  if (found.isNull()) return;
  const OdString name = found->componentName();
  if (name.isEmpty()) return;
  removeFrom(registry().extensionNames, name);
  removeFrom(registry().extensionClasses, cls->name());
}

OdStringArray VdmUpdateFeatureInterface::getRegisteredExtensions() {
  return registry().extensionNames;
}

OdStringArray VdmUpdateFeatureInterface::getRegisteredExtensionsDesc() {
  return registry().extensionClasses;
}

// ---- Extensions of objects

namespace {

// Null for a class that is not registered, or of which there are no objects.
OdRxObjectPtr makeOfClass(const OdString& className) {
  const OdRxClass* cls = odrxClassDictionary()->getAt(className);
  return cls == nullptr ? OdRxObjectPtr() : cls->create();
}

}  // namespace

void VdmUpdateFeatureInterface::setExtension(const OdString& className, OdDbObject* object) {
  if (object == nullptr) return;
  if (!object->isWriteEnabled()) object->upgradeOpen();
  const OdRxObjectPtr made = makeOfClass(className);
  const OdSmartPtr<VdmUpdateFeatureInterface> found = cast(made.get());
  if (found.isNull()) return;
  if (hasProperties(object)) storeFeatureType(object, className);
  found->applyExtension(object, found->extensionValue());
}

void VdmUpdateFeatureInterface::setExtension(OdRxClass* cls, OdDbObject* object) {
  if (cls != nullptr) setExtension(cls->name(), object);
}

OdRxObjectPtr VdmUpdateFeatureInterface::getExtension(OdDbObject* object) {
  VdmProperties bag;
  OdString className;
  if (object == nullptr || !hasProperties(object) || !bag.readFromDbObject(object) ||
      !bag.getProperty(kVdmFeatureType, className)) {
    return {};
  }
  return makeOfClass(className);
}
