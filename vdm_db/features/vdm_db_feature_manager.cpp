// The features of one block: making, finding, upkeep, filing.
#include "vdm_db/features/vdm_db_feature_manager.h"

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager_impl.h"
#include "vdm_db/features/vdm_db_naming_policy_pe.h"
#include "vdm_db/features/vdm_feature_color_material.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_naming_service.h"

VDM_DEFINE_DB_CLASS(VdmDbFeatureManager, OdDbObject, L"VdmDbFeatureManager", L"VDMDBFEATUREMANAGER",
                    L"features data")

namespace {

// What a partial undo record begins with.
enum UndoStep : OdUInt8 { kUndoFeatures = 0, kUndoNeedEvaluate = 1, kUndoNames = 2 };

}  // namespace

// ---- State

VdmDbFeatureManager::VdmDbFeatureManager()
    : m_impl(std::make_unique<VdmDbFeatureManagerImpl>()),
      m_namingService(std::make_unique<NamingService>(this)) {}
VdmDbFeatureManager::~VdmDbFeatureManager() = default;

VdmDbFeatureManagerImpl& VdmDbFeatureManager::implForRead() const {
  assertReadEnabled();
  return *m_impl;
}

std::size_t VdmDbFeatureManager::approximateSize() const {
  return sizeof(*this) + m_impl->features.approximateSize() +
         m_impl->residentClasses.approximateSize() +
         (m_impl->index ? m_impl->index->approximateSize() : 0) + OdDbObject::approximateSize();
}

// ---- Place

OdDbObjectId VdmDbFeatureManager::getInstance(const OdDbObjectId& blockId, bool create) {
  const OdDbObjectId id =
      vdmu::getObjInExtDict(blockId, kVdmFeatureManager, create ? desc() : nullptr);
  if (create) vdmu::createFeatureColorMaterial(blockId.database());
  return id;
}

OdDbObjectId VdmDbFeatureManager::blockId() const {
  assertReadEnabled();
  return vdmu::getOwningBlock(objectId());
}

// ---- Making features

OdDbObjectId VdmDbFeatureManager::createFeatureData(OdRxClass* cls, const OdString& name,
                                                    bool numberGiven, bool trim) {
  if (cls == nullptr || database() == nullptr) return OdDbObjectId::kNull;
  const VdmDbFeatureDataPtr carrier =
      VdmDbFeatureData::create(cls, finalName(cls, name, numberGiven, trim));
  if (carrier.isNull()) return OdDbObjectId::kNull;
  assertWriteEnabled(/*autoUndo=*/false);
  m_namingService->registerName(carrier->adapter()->name());
  const OdDbObjectId id = database()->addOdDbObject(carrier, objectId());
  appendFeature(id);
  return id;
}

OdString VdmDbFeatureManager::finalName(OdRxClass* cls, const OdString& name, bool numberGiven,
                                        bool trim) {
  const OdSmartPtr<VdmDbNamingPolicyPE> policy = VdmDbNamingPolicyPE::cast(this);
  return policy.isNull() ? name : policy->generateFeatureName(this, cls, name, numberGiven, trim);
}

// ---- Changes of the list, and their undo

OdDbDwgFiler* VdmDbFeatureManager::recordList() {
  assertWriteEnabled(/*autoUndo=*/false);
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer != nullptr) filer->wrUInt8(kUndoFeatures);
  return filer;
}

void VdmDbFeatureManager::appendFeature(const OdDbObjectId& feature) {
  OdDbDwgFiler* undo = recordList();
  m_impl->features.append({feature}, undo);
}

void VdmDbFeatureManager::removeFeature(OdDbObjectId feature) {
  assertWriteEnabled(/*autoUndo=*/false);
  takeOut({feature});
}

void VdmDbFeatureManager::takeOut(const OdDbObjectIdArray& features) {
  const OdArray<OdUInt32> positions = m_impl->features.positionsOf(features);
  if (!positions.isEmpty()) m_impl->features.takeOut(positions, recordList());
}

void VdmDbFeatureManager::recordNeedEvaluate() {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer == nullptr) return;
  filer->wrUInt8(kUndoNeedEvaluate);
  m_impl->properties().dwgOutProperty(filer, kVdmNeedEvaluate);
}

void VdmDbFeatureManager::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdUInt8 step = filer->rdUInt8();
  if (step == kUndoNames) return namesWillChange();
  if (step == kUndoFeatures) {
    m_namingService->invalidateCache();
    m_impl->features.applyUndo(filer, recordList());
    return;
  }
  recordNeedEvaluate();
  const OdResult result = m_impl->properties().dwgInProperty(filer, kVdmNeedEvaluate);
  if (result != eOk) throw OdError(result, "undo of property \"" + kVdmNeedEvaluate + "\"");
}

// ---- Finding features

class VdmDbFeatureManager::FeatureSource final : public VdmDbIteratorBase::DataSource {
 public:
  explicit FeatureSource(const VdmDbFeatureManager* manager)
      : m_manager(manager), m_features(&manager->implForRead().features.ids()) {}

  [[nodiscard]] OdUInt32 size() const override { return m_features->size(); }
  [[nodiscard]] OdDbObjectId at(OdUInt32 index) const override { return (*m_features)[index]; }
  [[nodiscard]] std::unique_ptr<DataSource> clone() const override {
    return std::make_unique<FeatureSource>(m_manager);
  }

 private:
  VdmDbFeatureManagerPtr m_manager;
  const OdDbObjectIdArray* m_features;
};

VdmDbIterator<VdmFeature> VdmDbFeatureManager::newFeatureIterator() const {
  return VdmDbIterator<VdmFeature>(std::make_unique<FeatureSource>(this));
}

const OdDbObjectIdArray& VdmDbFeatureManager::featureIds() const {
  return implForRead().features.ids();
}

OdDbObjectIdArray VdmDbFeatureManager::getFeatures(
    std::initializer_list<OdRxClass*> classes) const {
  const VdmDbFeatureManagerImpl& state = implForRead();
  OdDbObjectIdArray found;
  if (classes.size() != 0) m_impl->residentClasses.find(database(), state.features, classes, found);
  return found;
}

// ---- Status

OdResult VdmDbFeatureManager::updateFeaturesStatus(VdmFeature::Status status) {
  for (VdmDbIterator<VdmFeature> it = newFeatureIterator(); !it.done(); it.next()) {
    const VdmFeaturePtr feature = it.object();
    if (feature->getStatus() == VdmFeature::StatusNotifyEntities) continue;
    feature->upgradeOpen();
    const OdResult result = feature->setStatus(status);
    if (result != eOk) return result;
  }
  return eOk;
}

void VdmDbFeatureManager::needEvaluate(bool flag) {
  assertWriteEnabled(/*autoUndo=*/false);
  VdmProperties& bag = m_impl->properties();
  if (flag ? isNeedEvaluate() : !bag.hasProperty(kVdmNeedEvaluate)) return;
  recordNeedEvaluate();
  bag.removeProperty(kVdmNeedEvaluate);  // also one of another type
  if (flag) bag.setProperty(kVdmNeedEvaluate, true);
}

bool VdmDbFeatureManager::isNeedEvaluate() const {
  bool needed = false;
  return implForRead().properties().getProperty(kVdmNeedEvaluate, needed) && needed;
}

void VdmDbFeatureManager::evaluate() {
  assertWriteEnabled(/*autoUndo=*/false);
  for (VdmDbIterator<VdmFeature> it = newFeatureIterator(); !it.done(); it.next()) {
    if (it.object()->isNeedEvaluate()) it.object(OdDb::kForWrite)->evaluate();
  }
  needEvaluate(false);
}

// ---- Names

bool VdmDbFeatureManager::onFeatureErased(const OdDbObjectId& /*feature*/) {
  if (isWriteEnabled()) {
    namesWillChange();
  } else {
    m_namingService->invalidateCache();
  }
  return true;
}

// Undo of an erase brings a name back, and redo takes it away again: both come by here.
void VdmDbFeatureManager::namesWillChange() {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  m_namingService->invalidateCache();
  if (OdDbDwgFiler* filer = beginPartialUndo(desc())) filer->wrUInt8(kUndoNames);
}

bool VdmDbFeatureManager::onFeatureRenamed(const OdDbObjectId& /*feature*/, const OdString& name) {
  if (m_namingService->checkInvalidateCacheNeed(name)) m_namingService->invalidateCache();
  return true;
}

// ---- Contexts

OdDbObjectId VdmDbFeatureManager::sheetMetalContext() const {
  return implForRead().sheetMetalContext;
}

void VdmDbFeatureManager::setSheetMetalContext(const OdDbObjectId& context) {
  assertWriteEnabled();
  m_impl->sheetMetalContext = context;
  const OdDbObjectPtr object = context.openObject(OdDb::kForWrite);
  if (!object.isNull()) object->setOwnerId(objectId());
}

OdResult VdmDbFeatureManager::deleteSheetMetalContext() {
  assertWriteEnabled();
  const OdDbObjectPtr context = m_impl->sheetMetalContext.openObject(OdDb::kForWrite);
  if (context.isNull()) return eWrongObjectType;
  const OdResult result = context->erase();
  if (result == eOk) m_impl->sheetMetalContext.setNull();
  return result;
}

// ---- Filing: the base's part, then the bag

OdResult VdmDbFeatureManager::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  m_namingService->invalidateCache();
  const OdResult result = OdDbObject::dwgInFields(filer);
  return result == eOk ? m_impl->dwgInFields(filer) : result;
}

void VdmDbFeatureManager::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl->dwgOutFields(filer);
}
