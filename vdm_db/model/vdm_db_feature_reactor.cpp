// Links of features: the base of the family.
#include "vdm_db/model/vdm_db_feature_reactor.h"

#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/model/vdm_block_managers.h"
#include "vdm_db/model/vdm_reference_notes.h"

VDM_DEFINE_DB_CLASS(VdmDbFeatureReactor, OdDbObject, L"VdmDbFeatureReactor", L"VDMDBFEATUREREACTOR",
                    L"features reactor")

// ---- State

VdmDbFeatureReactorImpl::VdmDbFeatureReactorImpl() {
  m_properties.setConfig(VdmProperties::kDropErasedIds);
}
VdmDbFeatureReactorImpl::~VdmDbFeatureReactorImpl() = default;

OdResult VdmDbFeatureReactorImpl::subErase(VdmDbFeatureReactor* /*reactor*/) { return eOk; }

OdDbObjectIdArray VdmDbFeatureReactorImpl::getVariables(const VdmDbFeatureReactor* /*reactor*/) {
  return {};
}
OdDbObjectIdArray VdmDbFeatureReactorImpl::getDependentVariables(
    const VdmDbFeatureReactor* /*reactor*/) {
  return {};
}

VdmDbFeatureReactor::VdmDbFeatureReactor()
    : VdmDbFeatureReactor(std::make_unique<VdmDbFeatureReactorImpl>()) {}
VdmDbFeatureReactor::VdmDbFeatureReactor(std::unique_ptr<VdmDbFeatureReactorImpl> impl)
    : m_impl(std::move(impl)) {}
VdmDbFeatureReactor::~VdmDbFeatureReactor() = default;

const VdmDbFeatureReactorImpl& VdmDbFeatureReactor::implForRead() const {
  assertReadEnabled();
  return *m_impl;
}

VdmDbFeatureReactorImpl& VdmDbFeatureReactor::implForWrite() {
  assertWriteEnabled();
  VdmReferenceNotes::note(this);
  return *m_impl;
}

// ---- What subclasses answer

bool VdmDbFeatureReactor::hasChanges() const { return false; }
bool VdmDbFeatureReactor::needConstraintsRecalculation() const { return false; }
bool VdmDbFeatureReactor::doAudit() { return true; }
bool VdmDbFeatureReactor::changesAreStored() const { return false; }

OdDbObjectIdArray VdmDbFeatureReactor::getVariables() {
  assertReadEnabled();
  return m_impl->getVariables(this);
}

OdDbObjectIdArray VdmDbFeatureReactor::getDependentVariables() {
  assertReadEnabled();
  return m_impl->getDependentVariables(this);
}

// ---- Place and life

OdDbObjectId VdmDbFeatureReactor::blockId() const {
  const OdDbObjectPtr carrier = ownerId().openObject();
  if (carrier.isNull()) return OdDbObjectId::kNull;
  const OdDbObjectPtr owner = carrier->ownerId().openObject();
  const VdmFeatureRegistry* manager = VdmFeatureRegistry::of(owner.get());
  return manager == nullptr ? OdDbObjectId::kNull : manager->blockId();
}

void VdmDbFeatureReactor::copied(const OdDbObject* /*object*/, const OdDbObject* clone) {
  vdmu::detachReactor(*clone, objectId());
}

OdResult VdmDbFeatureReactor::subErase(bool erasing) {
  const OdResult result = OdDbObject::subErase(erasing);
  if (result == eOk && erasing) m_impl->subErase(this);
  return result;
}

void VdmDbFeatureReactor::subExistenceChanged() { VdmReferenceNotes::note(this); }
void VdmDbFeatureReactor::subIdSwapped() { VdmReferenceNotes::note(this); }

// ---- Filing: the base's part, then the bag

OdResult VdmDbFeatureReactor::dwgInFields(OdDbDwgFiler* filer) {
  assertWriteEnabled();
  VdmReferenceNotes::note(this);
  const OdResult result = OdDbObject::dwgInFields(filer);
  return result == eOk ? m_impl->dwgInFields(filer) : result;
}

void VdmDbFeatureReactor::dwgOutFields(OdDbDwgFiler* filer) const {
  assertReadEnabled();
  OdDbObject::dwgOutFields(filer);
  m_impl->dwgOutFields(filer);
}
