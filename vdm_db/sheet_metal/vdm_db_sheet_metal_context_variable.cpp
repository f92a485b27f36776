// The variable that drives the thickness of a sheet-metal context.
//
// The context is a persistent reactor of the variable, and keeps its id under "ThicknessVar". The
// link holds while both are so: a copy of one without the other is not linked. A change of the
// variable reaches the context in modified(), a change of the option reaches the variable in
// VdmSheetMetalContextThicknessOption::setValue(). Each side writes only when the two numbers
// differ by more than kVdmSameValue, so the echo of a write ends where it began.
#include <utility>

#include "platform/assoc/assoc_variable.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context.h"
#include "vdm_db/sheet_metal/vdm_db_sheet_metal_context_impl.h"
#include "vdm_db/sheet_metal/vdm_same_value.h"

namespace {

// Until the thickness follows.
constexpr const wchar_t* kFirstExpression = L"1";

}  // namespace

// ---- The link

OdDbObjectId VdmDbSheetMetalContext::getThicknessParameter() const {
  const OdDbObjectId id = implForRead().thicknessVariable();
  if (id.isEffectivelyErased()) return OdDbObjectId::kNull;
  const auto variable = id.openAs<OdDbAssocVariable>();
  const bool isOfAnother = !variable.isNull() && !variable->hasPersistentReactor(objectId());
  return isOfAnother ? OdDbObjectId::kNull : id;
}

// Forgets a variable that does not drive the context any more.
VdmDbSheetMetalContextImpl& VdmDbSheetMetalContext::implForWrite() {
  assertWriteEnabled();
  if (!m_impl->thicknessVariable().isNull() &&
      std::as_const(*this).getThicknessParameter().isNull()) {
    m_impl->properties().removeProperty(kVdmThicknessVar);
  }
  return *m_impl;
}

OdDbObjectIdArray VdmDbSheetMetalContext::variables() const {
  const OdDbObjectId variable = getThicknessParameter();
  return variable.isNull() ? OdDbObjectIdArray() : OdDbObjectIdArray{variable};
}

OdDbObjectId VdmDbSheetMetalContext::getThicknessParameter(bool create) {
  const OdDbObjectId present = std::as_const(*this).getThicknessParameter();
  if (!present.isNull() || !create) return present;
  const auto manager = ownerId().openAs<VdmDbFeatureManager>();
  if (manager.isNull()) return OdDbObjectId::kNull;
  VdmDbSheetMetalContextImpl& impl = implForWrite();
  const OdDbObjectId id = vdmu::getAssocVariable(manager->blockId(), kVdmSheetMetalThickness,
                                                 /*create=*/true, kFirstExpression);
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return OdDbObjectId::kNull;
  if (vdmu::setConstExpression(variable, impl.thickness.value()) != eOk) {
    return OdDbObjectId::kNull;
  }
  variable->addPersistentReactor(objectId());
  impl.properties().setProperty(kVdmThicknessVar, id, OdDb::kSoftPointerRef);
  return id;
}

bool VdmDbSheetMetalContext::isThicknessVariable(const OdDbAssocVariable* variable) {
  if (variable == nullptr) return false;
  const auto context = getInstance(variable->objectThatOwnsNetworkInstance(), /*create=*/false)
                           .openAs<VdmDbSheetMetalContext>();
  return !context.isNull() && context->implForRead().thicknessVariable() == variable->objectId();
}

// ---- Reactions. The context is open for notification.

void VdmDbSheetMetalContext::modified(const OdDbObject* object) {
  if (isUndoing() || object->objectId() != m_impl->thicknessVariable()) return;
  const auto variable = OdDbAssocVariable::cast(object);
  if (variable.isNull()) return;
  const OdDbEvalVariantPtr value = variable->value();
  if (value.isNull() || vdmu::isStringType(value)) return;
  const double thickness = vdmu::getValueAsDouble(value);
  if (!vdmDiffers(thickness, m_impl->thickness.value())) return;
  const VdmOpenUpgrade upgrade(this);
  implForWrite().properties().setProperty(kVdmThickness, thickness);
  const auto manager = ownerId().openAs<VdmDbFeatureManager>(OdDb::kForWrite);
  if (!manager.isNull()) manager->updateFeaturesStatus(VdmFeature::StatusNotifyEntities);
}

void VdmDbSheetMetalContext::erased(const OdDbObject* object, bool erasing) {
  if (!erasing || isUndoing() || object->objectId() != m_impl->thicknessVariable()) return;
  const VdmOpenUpgrade upgrade(this);
  implForWrite().properties().removeProperty(kVdmThicknessVar);
  vdmu::detachReactor(*object, objectId());
}

// A copy of the variable drives another context or none.
void VdmDbSheetMetalContext::copied(const OdDbObject* /*object*/, const OdDbObject* clone) {
  vdmu::detachReactor(*clone, objectId());
}

OdResult VdmDbSheetMetalContext::subErase(bool erasing) {
  const OdResult result = OdDbObject::subErase(erasing);
  if (result != eOk || !erasing) return result;
  const OdDbObjectId id = m_impl->thicknessVariable();
  {
    const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
    if (variable.isNull()) return result;
    variable->removePersistentReactor(objectId());
    variable->removeAllDependencies(/*alsoErase=*/true);
  }
  vdmu::removeVariable(id);
  return result;
}
