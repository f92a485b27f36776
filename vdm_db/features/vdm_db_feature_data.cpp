// Carriers of features.
#include "vdm_db/features/vdm_db_feature_data.h"

#include <atomic>

#include "platform/base/error.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_display_utils.h"
#include "vdm_db/drawing_utils/vdm_erase_utils.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_colors.h"
#include "vdm_db/features/vdm_feature_external_pe.h"
#include "vdm_db/features/vdm_feature_pe.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_feature_results.h"
#include "vdm_db/features/vdm_naming_service.h"
#include "vdm_db/features/vdm_update_feature_interface.h"
#include "vdm_db/model/vdm_reference_notes.h"

namespace {

std::atomic<OdUInt64> g_numEnded{0};

}  // namespace

// ---- Run-time class: queries go on to the feature

OdRxClass* VdmDbFeatureData::g_pDesc = nullptr;
OdRxClass* VdmDbFeatureData::desc() noexcept { return g_pDesc; }
OdRxClass* VdmDbFeatureData::isA() const { return g_pDesc; }
OdSmartPtr<VdmDbFeatureData> VdmDbFeatureData::cast(const OdRxObject* object) {
  return odrxCast<VdmDbFeatureData>(object);
}
void VdmDbFeatureData::rxInit() { rxInit(nullptr); }
void VdmDbFeatureData::rxInit(AppNameChangeFuncPtr appNameChange) {
  odrxRegister(g_pDesc,
               {L"VdmDbFeatureData", OdDbObject::desc(), &VdmDbFeatureData::pseudoConstructor,
                kVdmDwgVersion, kVdmMaintenanceVersion, kVdmProxyFlags, L"VDMDBFEATUREDATA",
                L"Vantrel|Description: features data", appNameChange});
}
void VdmDbFeatureData::rxUninit() { odrxUnregister(g_pDesc, L"VdmDbFeatureData"); }
OD_RX_DEFINE_CREATION(VdmDbFeatureData)

OdRxObject* VdmDbFeatureData::queryX(const OdRxClass* protocol) const {
  if (protocol == nullptr || g_pDesc == nullptr) return OdDbObject::queryX(protocol);
  if (protocol == g_pDesc) {
    auto* self = const_cast<VdmDbFeatureData*>(this);
    self->addRef();
    return self;
  }
  if (protocol->isDerivedFrom(VdmFeature::desc())) return queryAdapter(protocol);
  if (protocol->isDerivedFrom(VdmFeaturePE::desc())) {
    return adapter() == nullptr ? nullptr : adapter()->queryX(protocol);
  }
  if (const OdSmartPtr<VdmFeatureExternalPE> external = VdmFeatureExternalPE::getFrom(protocol);
      !external.isNull()) {
    return external->queryFeatureData(this).detach();
  }
  OdRxObjectPtr extension = g_pDesc->getX(protocol);
  return extension.isNull() ? OdDbObject::queryX(protocol) : extension.detach();
}

OdRxClass* VdmDbFeatureData::adapterClass() const {
  return adapter() == nullptr ? OdRxObject::desc() : adapter()->isA();
}

OdRxObject* VdmDbFeatureData::queryAdapter(const OdRxClass* cls) const {
  VdmFeature* feature = m_impl->feature();
  if (feature == nullptr || feature->isA() == nullptr || !feature->isKindOf(cls)) return nullptr;
  feature->addRef();
  return feature;
}

// ---- State

VdmDbFeatureDataImpl::VdmDbFeatureDataImpl() {
  m_properties.setVersion(1);
  m_properties.mapProperty<OdString>(kVdmFeatureDataType, &m_featureType);
}

VdmDbFeatureDataImpl::~VdmDbFeatureDataImpl() {
  if (!m_feature.isNull()) m_feature->attach(nullptr);
}

bool VdmDbFeatureDataImpl::createFeature(const OdRxClass* cls, OdDbObject* carrier,
                                         const OdString& name) {
  if (cls == nullptr || !cls->isDerivedFrom(VdmFeature::desc()) || !m_feature.isNull()) {
    return false;
  }
  m_feature = VdmFeature::cast(cls->create().get());
  if (m_feature.isNull()) return false;
  m_feature->attach(carrier);
  m_feature->mapProperties(m_properties);
  m_featureType = cls->name();
  m_feature->m_name = name;
  m_feature->m_status = 0;
  return true;
}

VdmFeaturePtr VdmDbFeatureDataImpl::makeOfStoredType() const {
  const OdRxClass* cls = odrxClassDictionary()->getAt(m_featureType);
  if (cls == nullptr || !cls->isDerivedFrom(VdmFeature::desc())) return {};
  VdmFeaturePtr feature = VdmFeature::cast(cls->create().get());
  if (!feature.isNull() && !feature->isValidEdition(m_properties)) feature.release();
  return feature;
}

void VdmDbFeatureDataImpl::bagWasRead(OdDbObject* carrier) {
  if (m_feature.isNull()) m_feature = makeOfStoredType();
  if (m_feature.isNull()) m_feature = VdmFeature::createObject();
  m_feature->attach(carrier);
  m_feature->mapProperties(m_properties);
}

VdmDbFeatureData::VdmDbFeatureData() : m_impl(std::make_unique<VdmDbFeatureDataImpl>()) {}
VdmDbFeatureData::~VdmDbFeatureData() { g_numEnded.fetch_add(1, std::memory_order_relaxed); }

OdUInt64 VdmDbFeatureData::numEnded() { return g_numEnded.load(std::memory_order_relaxed); }

OdSmartPtr<VdmDbFeatureData> VdmDbFeatureData::create(const OdRxClass* cls, const OdString& name) {
  VdmDbFeatureDataPtr carrier = createObject();
  if (!carrier->m_impl->createFeature(cls, carrier, name)) carrier.release();
  return carrier;
}

const VdmProperties& VdmDbFeatureData::getReadProperties() const {
  assertReadEnabled();
  return std::as_const(*m_impl).properties();
}

VdmProperties& VdmDbFeatureData::getWriteProperties() {
  assertWriteEnabled();
  VdmReferenceNotes::note(this);
  return m_impl->properties();
}

OdString VdmDbFeatureData::featureType() const {
  assertReadEnabled();
  return m_impl->featureType();
}

// ---- Filing: the base's part, then the bag, then what the feature adds; in DXF the subclass
// marker (group 100) precedes the bag

OdResult VdmDbFeatureData::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  VdmReferenceNotes::note(this);
  OdResult result = OdDbObject::dwgInFields(filer);
  if (result == eOk) result = m_impl->dwgInFields(filer);
  if (result != eOk) return result;
  m_impl->bagWasRead(this);
  if (isUndoing()) invalidateNamesOfManager();
  return m_impl->feature()->dwgInFields(filer);
}

void VdmDbFeatureData::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl->dwgOutFields(filer);
  if (adapter() != nullptr) adapter()->dwgOutFields(filer);
}

namespace {

constexpr int kSubclassMarker = 100;

bool readMarker(OdDbDxfFiler* filer, const OdString& name) {
  if (filer->atEOF()) return false;
  if (filer->nextItem() == kSubclassMarker) return filer->rdString() == name;
  filer->pushBackItem();
  return false;
}

}  // namespace

OdResult VdmDbFeatureData::dxfInFields(OdDbDxfFiler* filer) {
  assertWriteEnabled();
  VdmReferenceNotes::note(this);
  OdResult result = OdDbObject::dxfInFields(filer);
  if (result != eOk) return result;
  if (!readMarker(filer, desc()->name())) return eNotApplicable;
  result = m_impl->dxfInFields(filer);
  if (result != eOk) return result;
  m_impl->bagWasRead(this);
  return m_impl->feature()->dxfInFields(filer);
}

void VdmDbFeatureData::dxfOutFields(OdDbDxfFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dxfOutFields(filer);
  filer->wrString(kSubclassMarker, desc()->name());
  m_impl->dxfOutFields(filer);
  if (adapter() != nullptr) adapter()->dxfOutFields(filer);
}

// ---- Cloning

OdDbObjectPtr VdmDbFeatureData::subDeepClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                             bool isPrimary) const {
  OdDbObjectPtr clone = OdDbObject::subDeepClone(mapping, owner, isPrimary);
  if (clone.isNull() || adapter() == nullptr) return clone;
  auto* self = const_cast<VdmDbFeatureData*>(this);  // hooks take the source as a plain pointer
  adapter()->VdmFeature::onDeepClone(mapping, self, clone, isPrimary);
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(adapter());
  if (active.isNull()) {
    adapter()->onDeepClone(mapping, self, clone, isPrimary);
  } else {
    active->onDeepClone(mapping, self, clone, isPrimary);
  }
  return clone;
}

OdDbObjectPtr VdmDbFeatureData::subWblockClone(OdDbIdMapping& mapping, OdDbObject* owner,
                                               bool isPrimary) const {
  OdDbObjectPtr clone = OdDbObject::subWblockClone(mapping, owner, isPrimary);
  if (clone.isNull() || adapter() == nullptr) return clone;
  auto* self = const_cast<VdmDbFeatureData*>(this);
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(adapter());
  if (active.isNull()) {
    adapter()->onWblockClone(mapping, self, clone, isPrimary);
  } else {
    active->onWblockClone(mapping, self, clone, isPrimary);
  }
  return clone;
}

void VdmDbFeatureData::appendToOwner(OdDbIdPair& pair, OdDbObject* owner, OdDbIdMapping& mapping) {
  const VdmDbFeatureManagerPtr manager = VdmDbFeatureManager::cast(owner);
  if (manager.isNull()) return OdDbObject::appendToOwner(pair, owner, mapping);
  const VdmOpenUpgrade upgrade(manager);
  manager->onAppendToOwner(this);
}

// ---- What may concern its part in update passes

void VdmDbFeatureData::subExistenceChanged() { VdmReferenceNotes::note(this); }
void VdmDbFeatureData::subIdSwapped() { VdmReferenceNotes::note(this); }
void VdmDbFeatureData::subClose() { VdmReferenceNotes::note(this); }

// ---- Erasing

OdResult VdmDbFeatureData::subErase(bool erasing) {
  const OdResult result = OdDbObject::subErase(erasing);
  if (result != eOk) return result;
  refileManager();
  return erasing && !isUndoing() ? eraseOwnObjects() : eOk;
}

void VdmDbFeatureData::invalidateNamesOfManager() const {
  const VdmDbFeatureManagerPtr manager = ownerId().openAs<VdmDbFeatureManager>();
  if (!manager.isNull()) manager->onFeatureErased(objectId());
}

// The manager's list as filed leaves out erased features: it is to be filed anew.
void VdmDbFeatureData::refileManager() const {
  const VdmDbFeatureManagerPtr manager = ownerId().openAs<VdmDbFeatureManager>(OdDb::kForWrite);
  if (manager.isNull()) return invalidateNamesOfManager();
  manager->onFeatureErased(objectId());
}

OdResult VdmDbFeatureData::eraseOwnObjects() {
  VdmFeature* feature = m_impl->feature();
  if (feature == nullptr) {
    completeErase(/*erasing=*/true);
    return kVdmNoFeature;
  }
  if (vdmu::GetFEATURECOLORS::getValue()) {
    vdmu::markEntToRedraw(vdmEntitiesOf(feature->getAllDependencies(/*filtered=*/false)));
  }
  const OdDbObjectIdArray reactors = feature->reactors();
  OdDbObjectIdArray owned = reactors;
  owned.append(feature->ownedObjects());
  const VdmUpdateFeatureInterfacePtr active = VdmUpdateFeatureInterface::activeOf(feature);
  if (!active.isNull() && active->erasesOwnObjects()) owned.append(active->ownObjectIds());
  for (const OdDbObjectId& id : reactors) feature->removeReactor(id, /*eraseReactor=*/false);
  vdmu::eraseObjects(owned);
  return eOk;
}
