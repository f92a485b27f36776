// Model objects: making and finding them, their dependencies, what they hear and pass on.
#include "vdm_db/model/vdm_db_object.h"

#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"
#include "platform/db/locked_layers.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/drawing_utils/vdm_erase_utils.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/model/vdm_block_managers.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_db_object_impl.h"
#include "vdm_db/model/vdm_db_object_pe.h"
#include "vdm_db/model/vdm_object_names.h"
#include "vdm_utils/vdmc_assert.h"

OD_RX_DEFINE_DB(VdmDbObject, OdDbObject, L"VdmDbObject", kVdmDwgVersion, kVdmMaintenanceVersion,
                kVdmProxyFlags, L"VDMOBJECT", L"VdmModule|Description: Vantrel Driving Dimension")

namespace {

VdmDbObjectPtr createModelObject() {
  const OdRxObjectPtr created = VdmDbObject::desc()->create();
  return created;  // raises for another class
}

}  // namespace

// ---- Making and finding

VdmDbObject::VdmDbObject() : m_impl(std::make_unique<VdmDbObjectImpl>()) {}
VdmDbObject::~VdmDbObject() = default;

OdDbObjectId VdmDbObject::getInstance(const OdDbObjectId& entity, const OdDbObjectId& manager) {
  if (const VdmDbObjectPtr present = openVdmDbObject(entity); !present.isNull()) {
    return present->objectId();
  }
  const OdDbObjectPtr owner = manager.openObject();
  VdmModelObjectRegistry* registry = VdmModelObjectRegistry::of(owner.get());
  const OdDbEntityPtr opened = entity.openAs<OdDbEntity>();
  if (registry == nullptr || opened.isNull()) return OdDbObjectId::kNull;
  const VdmDbObjectPtr object = createModelObject();
  object->setName(registry->generateVdmDbObjectName(vdmNameBaseOf(opened)));
  const OdDbObjectId id = owner->database()->addOdDbObject(object, manager);
  object->attachTo(entity);
  const VdmOpenUpgrade upgrade(owner);
  registry->registerVdmDbObject(object);
  return id;
}

void VdmDbObject::attachTo(const OdDbObjectId& entity) {
  assertWriteEnabled();
  const OdDbObjectPtr opened = entity.safeOpenObject();
  if (!opened->hasPersistentReactor(objectId())) {
    const VdmOpenUpgrade upgrade(opened);
    opened->addPersistentReactor(objectId());
  }
  m_impl->attachedEntity = entity;
}

VdmDbObjectPtr VdmDbObject::openVdmDbObject(OdDbObjectId entity, OdDb::OpenMode mode,
                                            bool openErased) {
  return openVdmDbObject(entity.openObject(OdDb::kForRead, openErased).get(), mode, openErased);
}

VdmDbObjectPtr VdmDbObject::openVdmDbObject(const OdDbObject* entity, OdDb::OpenMode mode,
                                            bool openErased) {
  if (entity == nullptr) return VdmDbObjectPtr();
  for (const OdDbObjectId reactor : entity->getPersistentReactors()) {
    if (!vdmu::isIdOf<VdmDbObject>(reactor)) continue;
    VdmDbObjectPtr object = reactor.openAs<VdmDbObject>(mode, openErased);
    if (object.isNull()) continue;
    vdmAssert(entity->database() == object->database(), "pEnt->database() == res->database()",
              L"entity " + entity->getDbHandle().ascii() + L", model object " +
                  object->getDbHandle().ascii(),
              "vdm_db/vdm_db_object", 0);
    return object;
  }
  return VdmDbObjectPtr();
}

// ---- State

VdmDbObjectImpl& VdmDbObject::implForRead() const {
  assertReadEnabled();
  return *m_impl;
}

OdDbObjectId VdmDbObject::attachedEntityId() const { return implForRead().attachedEntity; }
OdString VdmDbObject::name() const { return implForRead().name; }

void VdmDbObject::setName(const OdString& name) {
  if (name.isEmpty() || (isWriteEnabled() && name == m_impl->name)) return;
  assertWriteEnabled(/*autoUndo=*/false);
  recordName();
  m_impl->name = name;
  if (isDBRO()) vdmObjectNamesChanged();
}

bool VdmDbObject::hasAttributes() const { return !implForRead().attributes.isEmpty(); }
const VdmIndexMap& VdmDbObject::attributes() const { return implForRead().attributes; }

void VdmDbObject::setAttributes(VdmIndexMap& attributes) {
  if (isWriteEnabled() && attributes == m_impl->attributes) return;
  assertWriteEnabled(/*autoUndo=*/false);
  recordAttributes();
  m_impl->attributes = attributes;
}

// ---- Transform

const OdGeMatrix3d& VdmDbObject::getTransform() const { return implForRead().transform; }

bool VdmDbObject::canTransformBeApplied() const {
  return implForRead().isTransformOpen && !m_impl->transform.isIdentity();
}

void VdmDbObject::addTransform(OdGeMatrix3d& transform) {
  assertWriteEnabled(/*autoUndo=*/false);
  recordTransform(m_impl->isTransformOpen);
  if (!m_impl->isTransformOpen) m_impl->transform.setToIdentity();
  m_impl->transform.preMultBy(transform);
  if (const VdmDbObjectPEPtr host = VdmDbObjectPE::cast(this); !host.isNull()) {
    host->transformAdded(database(), &m_impl->attachedEntity, &m_impl->transform,
                         &m_impl->isTransformOpen);
  }
}

void VdmDbObject::clearTransform() {
  const bool wasOpen = implForRead().isTransformOpen;
  m_impl->isTransformOpen = true;
  if (m_impl->transform.isIdentity()) return;
  const VdmOpenUpgrade upgrade(this);
  assertWriteEnabled(/*autoUndo=*/false);
  recordTransform(wasOpen);
  m_impl->transform.setToIdentity();
}

bool VdmDbObject::getTransformForSolver(OdGeMatrix3d& transform) const {
  const bool applies = canTransformBeApplied();
  transform = applies ? m_impl->transform : OdGeMatrix3d::kIdentity;
  return applies;
}

// ---- Passing on

void VdmDbObject::constrainerNotify(bool notify) { m_impl->notifies = notify; }

bool VdmDbObject::isWatched() const {
  if (hasDependencies()) return true;
  const OdDbObjectPtr entity = m_impl->attachedEntity.openObject();
  if (entity.isNull()) return false;
  for (const OdDbObjectId reactor : entity->getPersistentReactors()) {
    const OdDbObjectPtr opened = reactor.openObject();
    if (opened.isNull()) continue;
    for (const OdDbObjectId watcher : opened->getPersistentReactors()) {
      if (vdmu::isIdOf<VdmDbFeatureReactor>(watcher) && !watcher.isErased()) return true;
    }
  }
  return false;
}

void VdmDbObject::triggerObjectRedraw() {
  const OdDbEntityPtr entity = oddbOpenThroughLock<OdDbEntity>(implForRead().attachedEntity);
  if (entity.isNull()) return;
  recordStep(kUndoRedraw);
  entity->recordGraphicsModified();
}

void VdmDbObject::notifyAboutModifications(bool modified) {
  if (modified) {
    if (!isWatched()) return;
  } else {
    clearTransform();
  }
  const OdDbObjectPtr manager = ownerId().openObject(OdDb::kForWrite);
  VdmModelObjectRegistry* registry = VdmModelObjectRegistry::of(manager.get());
  if (registry != nullptr) registry->notifyAboutModifications(m_impl->attachedEntity, modified);
}

void VdmDbObject::erased(const OdDbObject* object, bool erasing) {
  if (!erasing || object->isUndoing()) return;
  if (object->objectId() != m_impl->attachedEntity) return;
  VDM_ASSERT_AT(!isUndoing(), "vdm_db/vdm_db_object", 76);
  if (const VdmDbObjectPEPtr host = VdmDbObjectPE::cast(this); !host.isNull()) {
    // Events pass the entity as a constant; hosts may upgrade it.
    host->entityChanged(const_cast<OdDbObject*>(object), objectId());
  }
  const VdmOpenUpgrade upgrade(this);
  erase();
}

void VdmDbObject::modifiedGraphics(const OdDbObject* object) {
  OdDbObject::modifiedGraphics(object);
  if (object->isUndoing() || object->objectId() != m_impl->attachedEntity) return;
  const VdmDbObjectPEPtr host = VdmDbObjectPE::cast(this);
  if (host.isNull() || !host->entityChanged(const_cast<OdDbObject*>(object), objectId())) return;
  if (m_impl->notifies && isWatched()) notifyAboutModifications(/*modified=*/true);
}

void VdmDbObject::copied(const OdDbObject* /*object*/, const OdDbObject* clone) {
  vdmu::detachReactor(*clone, objectId());
}

OdResult VdmDbObject::subErase(bool erasing) {
  const OdResult result = OdDbObject::subErase(erasing);
  if (result != eOk || !erasing || isUndoing()) return result;
  leaveManager();
  notifyAboutModifications(/*modified=*/false);
  leaveEntity();
  clearTransform();
  return eOk;
}

// An owner that is erased, too, keeps no list.
void VdmDbObject::leaveManager() {
  const OdDbObjectPtr owner = ownerId().openObject(OdDb::kForWrite);
  if (owner.isNull()) return;
  VdmModelObjectRegistry::required(owner.get()).unregisterVdmDbObject(this);
}

void VdmDbObject::leaveEntity() {
  const OdDbObjectPtr entity =
      oddbOpenThroughLock<OdDbObject>(m_impl->attachedEntity, /*openErased=*/true);
  if (!entity.isNull()) entity->removePersistentReactor(objectId());
}

void VdmDbObject::eraseWithSubObjects() {
  assertWriteEnabled(/*autoUndo=*/false, /*recordModified=*/false);
  const OdDbObjectIdArray owned = m_impl->constraintDependencies.ids();
  if (erase() != eOk) return;
  vdmu::eraseObjects(owned);
}

// ---- Partial undo: a step (uint8), then what it restores
//
//   0  attributes             index map
//   1  transform              16 doubles, row after row, bool open
//   2  redraw                 nothing: the entity's graphics count as changed
//   3  name                   string
//   4  constraint dependencies, 5  persistent-id dependencies: see VdmIndexedIds

OdDbDwgFiler* VdmDbObject::recordStep(UndoStep step) {
  OdDbDwgFiler* filer = beginPartialUndo(desc());
  if (filer != nullptr) filer->wrUInt8(step);
  return filer;
}

void VdmDbObject::recordAttributes() {
  if (OdDbDwgFiler* filer = recordStep(kUndoAttributes)) m_impl->attributes.dwgOutFields(filer);
}

void VdmDbObject::recordTransform(bool isOpen) {
  if (OdDbDwgFiler* filer = recordStep(kUndoTransform)) m_impl->writeTransform(filer, isOpen);
}

void VdmDbObject::recordName() {
  if (OdDbDwgFiler* filer = recordStep(kUndoName)) filer->wrString(m_impl->name);
}

void VdmDbObject::applyPartialUndo(OdDbDwgFiler* filer, OdRxClass* cls) {
  if (cls != desc()) return OdDbObject::applyPartialUndo(filer, cls);
  const OdUInt8 step = filer->rdUInt8();
  switch (step) {
    case kUndoAttributes:
      recordAttributes();
      return m_impl->attributes.dwgInFields(filer);
    case kUndoTransform:
      recordTransform(m_impl->isTransformOpen);
      return m_impl->readTransform(filer);
    case kUndoRedraw:
      return triggerObjectRedraw();
    case kUndoName:
      recordName();
      m_impl->name = filer->rdString();
      return vdmObjectNamesChanged();
    case kUndoConstraintList:
      m_impl->constraintPaths.invalidate();
      return m_impl->constraintDependencies.applyUndo(filer, recordStep(kUndoConstraintList));
    case kUndoPersIdList:
      invalidatePersIdDepsCache();
      return m_impl->persIdDependencies.applyUndo(filer, recordStep(kUndoPersIdList));
    default:
      throw OdError(eCorruptData, OdString().format(L"undo step %d of a model object", step));
  }
}

// ---- Filing; vdm_db_object_impl.cpp has the record

OdResult VdmDbObject::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  // An object that is being loaded has no state that could come back.
  if (filer->filerType() != OdDbDwgFiler::kFileFiler) recordAttributes();
  const OdResult result = OdDbObject::dwgInFields(filer);
  if (result != eOk) return result;
  if (isDBRO()) vdmObjectNamesChanged();
  return m_impl->dwgInFields(filer);
}

void VdmDbObject::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl->dwgOutFields(filer);
}

bool VdmDbObject::hasStateOutsideFile() const {
  return !m_impl->notifies || !m_impl->isTransformOpen || !m_impl->transform.isIdentity();
}

std::size_t VdmDbObject::approximateSize() const {
  constexpr std::size_t kAttributeSize = 128;  // a node with a list of one number
  return OdDbObject::approximateSize() + sizeof(VdmDbObjectImpl) +
         m_impl->constraintDependencies.approximateSize() +
         m_impl->persIdDependencies.approximateSize() + m_impl->attributes.size() * kAttributeSize;
}
