// Features: carrier, name, status, the hooks of classes.
#include "vdm_db/features/vdm_feature.h"

#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_color_pe.h"
#include "vdm_db/features/vdm_feature_external_pe.h"
#include "vdm_db/features/vdm_feature_impl.h"
#include "vdm_db/features/vdm_feature_pe.h"
#include "vdm_db/features/vdm_feature_results.h"
#include "vdm_db/features/vdm_naming_service.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_reference_notes.h"

// ---- Run-time class

namespace {

// Takes over the reference of a smart pointer, as queryX hands it out.
OdRxObject* handOut(OdRxObjectPtr object) { return object.detach(); }

// Each query of a VdmFeaturePE gives a new object, bound to the feature.
OdRxObject* bindTo(const VdmFeature* feature, const OdRxObjectPtr& extension) {
  const VdmFeaturePE* pattern = nullptr;
  if (extension->isKindOf(VdmFeaturePE::desc())) {
    pattern = static_cast<const VdmFeaturePE*>(extension.get());
  }
  if (pattern == nullptr) return handOut(extension);
  const OdRxObjectPtr bound = pattern->isA()->create();
  if (bound.isNull()) return nullptr;
  static_cast<VdmFeaturePE*>(bound.get())->attach(feature);
  return handOut(bound);
}

}  // namespace

OdRxObject* vdmQueryFeature(const VdmFeature* feature, const OdRxClass* featureClass,
                            const OdRxClass* protocol) {
  if (protocol == nullptr || featureClass == nullptr) return nullptr;
  if (protocol == featureClass) {
    auto* self = const_cast<VdmFeature*>(feature);
    self->addRef();
    return self;
  }
  if (const OdSmartPtr<VdmFeatureExternalPE> external = VdmFeatureExternalPE::getFrom(protocol);
      !external.isNull()) {
    return handOut(external->queryFeature(feature));
  }
  const OdRxObjectPtr extension = featureClass->getX(protocol);
  return extension.isNull() ? nullptr : bindTo(feature, extension);
}

VDM_DEFINE_FEATURE_CLASS(VdmFeature, OdRxObject, L"VdmFeature")

VdmFeature::VdmFeature() = default;
VdmFeature::~VdmFeature() = default;

// A pass opens many features for read: those are not queried for.
VdmFeaturePtr VdmFeature::open(const OdDbObjectId& carrier, OdDb::OpenMode mode) {
  if (mode != OdDb::kForRead) return carrier.openAs<VdmFeature>(mode);
  const OdDbObjectPtr object = carrier.openObject();
  if (object.isNull() || object->isA() != VdmDbFeatureData::desc()) return cast(object.get());
  const VdmFeature* adapter = static_cast<const VdmDbFeatureData&>(*object).adapter();
  if (adapter == nullptr || adapter->isA() == nullptr) return {};
  return VdmFeaturePtr(const_cast<VdmFeature*>(adapter));
}

// ---- The carrier

void VdmFeature::assertReadable() const {
  const OdDbObject* carrier = getDbObject();
  if (carrier == nullptr || !carrier->isReadEnabled()) [[unlikely]]
    odRaise(eNotOpenForRead, "carrier of a feature");
}

OdDbObject* VdmFeature::assertWritable() {
  OdDbObject* carrier = getDbObject();
  if (carrier == nullptr) odRaise(eNotOpenForWrite, "a feature without carrier");
  carrier->assertWriteEnabled();
  VdmReferenceNotes::note(carrier);
  return carrier;
}

void VdmFeature::upgradeOpen() {
  assertReadable();
  getDbObject()->upgradeOpen();
}

OdDbObjectId VdmFeature::objectId() const {
  const OdDbObject* carrier = getDbObject();
  return carrier == nullptr ? OdDbObjectId::kNull : carrier->objectId();
}

OdDbObjectId VdmFeature::featureManagerId() const {
  assertReadable();
  return getDbObject()->ownerId();
}

void VdmFeature::mapProperties(VdmProperties& bag) {
  bag.mapProperty<OdString>(kVdmFeatureName, &m_name);
  bag.mapProperty(kVdmFeatureReactors, &m_reactors, OdDb::kHardOwnershipRef);
  bag.mapProperty<OdLong>(kVdmFeatureStatus, &m_status);
  if (const int edition = currentEdition(); edition > 0) {
    bag.setProperty(kVdmFeatureEdition, static_cast<OdLong>(edition));
  }
  subMapProperties(bag);
}

bool VdmFeature::removeProperty(const OdString& key) {
  assertWritable();
  return static_cast<VdmDbFeatureData*>(getDbObject())->getWriteProperties().removeProperty(key);
}

OdDbObjectIdArray VdmFeature::ownedObjects() const { return {}; }

// ---- Name

OdString VdmFeature::name() const {
  assertReadable();
  return m_name;
}

OdResult VdmFeature::setName(const OdString& name) {
  assertWritable();
  const OdString oldName = m_name;
  m_name = name;
  const VdmDbFeatureManagerPtr manager = featureManagerId().openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return eOk;
  manager->namingService().registerName(name);
  if (name != oldName) manager->onFeatureRenamed(objectId(), oldName);
  return eOk;
}

// ---- Status

VdmFeature::Status VdmFeature::getStatus() const {
  assertReadable();
  return static_cast<Status>(m_status);
}

OdResult VdmFeature::setStatus(Status status) {
  assertReadable();
  if (status != 0 && (m_status & StatusSuppressed) != 0) return eOk;
  assertWritable();
  if ((status & StatusNotifyEntities) != 0) notifyEntities();
  if ((status & StatusNeedEvaluate) != 0) {
    const VdmDbFeatureManagerPtr manager =
        featureManagerId().openAs<VdmDbFeatureManager>(OdDb::kForWrite);
    if (!manager.isNull()) manager->needEvaluate(true);
  }
  m_status = status;
  return eOk;
}

void VdmFeature::notifyEntities() const {
  const OdDbObjectIdArray dependencies = getDependencies(-1, /*filtered=*/false);
  for (const OdDbObjectId& id : dependencies) {
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull()) continue;
    const VdmDbObjectPtr entity = VdmDbObject::openVdmDbObject(dependency->getInsertId());
    if (!entity.isNull()) entity->notifyAboutModifications(/*modified=*/true);
  }
}

bool VdmFeature::isNeedEvaluate() const { return (getStatus() & StatusNeedEvaluate) != 0; }

void VdmFeature::evaluate() { setStatus(static_cast<Status>(getStatus() & ~StatusNeedEvaluate)); }

// ---- The update pass

bool VdmFeature::prepareUpdateData(VdmFeatureUpdateData& data, bool forced) {
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(this);
  return active.isNull() || active->prepareUpdateData(data, forced);
}

bool VdmFeature::update(VdmFeatureUpdateData& /*data*/) {
  assertWritable();
  return false;
}

bool VdmFeature::initAfterUpdate(VdmFeatureUpdateData& data) {
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(this);
  return !active.isNull() && active->initAfterUpdate(data);
}

bool VdmFeature::isRequiredDependency(int mask, int tag) {
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(this);
  return active.isNull() || active->isRequiredDependency(mask, tag);
}

// ---- Hooks of the feature's class

const OdArray<int>& VdmFeature::masks() const {
  static const OdArray<int> kNone;
  return kNone;
}

const OdArray<int>& VdmFeature::singleEntityMasks() {
  static const OdArray<int> kSingle{1};
  return kSingle;
}

void VdmFeature::subMapProperties(VdmProperties& /*bag*/) {}

int VdmFeature::currentEdition() const { return 0; }

bool VdmFeature::isValidEdition(const VdmProperties& bag) const {
  OdLong edition = 0;
  bag.getProperty(kVdmFeatureEdition, edition);
  return edition <= currentEdition();
}

bool VdmFeature::upgradeVersion() { return false; }

OdResult VdmFeature::validate(VdmFeatureValidationContext& /*context*/, VdmuIReporter& /*reporter*/,
                              bool& valid) {
  valid = true;
  return eOk;
}

bool VdmFeature::overrideColor(int mask, OdCmEntityColor& color) const {
  const OdRxClass* cls = isA();
  const OdRxObjectPtr extension =
      cls == nullptr ? OdRxObjectPtr() : cls->getX(VdmFeatureColorPE::desc());
  return !extension.isNull() &&
         static_cast<VdmFeatureColorPE*>(extension.get())->overrideColor(mask, color);
}

OdResult VdmFeature::onPropertyModified(const OdString& /*key*/, double /*value*/) {
  return kVdmNotHandled;
}
OdResult VdmFeature::onReactorModified(OdDbObject* /*object*/) { return kVdmNotHandled; }

void VdmFeature::dwgOutFields(OdDbDwgFiler* /*filer*/) const {}
OdResult VdmFeature::dwgInFields(OdDbDwgFiler* /*filer*/) { return eOk; }
void VdmFeature::dxfOutFields(OdDbDxfFiler* /*filer*/) const {}
OdResult VdmFeature::dxfInFields(OdDbDxfFiler* /*filer*/) { return eOk; }

// ---- Cloning

bool VdmFeature::canBeCloned(const OdDbIdMapping& /*mapping*/) const { return true; }
bool VdmFeature::mustBeCloned(const OdDbIdMapping& /*mapping*/) const { return false; }

// Without a pair of their owner the dependencies are left alone: the owner clones them when its
// turn comes.
void VdmFeature::onDeepClone(OdDbIdMapping& mapping, OdDbObject* /*source*/, OdDbObject* /*clone*/,
                             bool /*flag*/) const {
  const OdDbObjectIdArray dependencies = getDependencies(-1, /*filtered=*/false);
  if (dependencies.isEmpty()) return;
  OdDbIdPair owner(dependencies.first().ownerId());
  if (!mapping.compute(owner)) return;
  const OdDbObjectPtr cloneOwner = owner.value().openObject(OdDb::kForWrite);
  if (cloneOwner.isNull()) return;
  for (const OdDbObjectId& id : dependencies) {
    const OdDbObjectPtr dependency = id.openObject();
    if (!dependency.isNull()) dependency->deepClone(mapping, cloneOwner, /*isPrimary=*/true);
  }
}

void VdmFeature::onWblockClone(OdDbIdMapping& /*mapping*/, OdDbObject* /*source*/,
                               OdDbObject* /*clone*/, bool /*flag*/) const {}
