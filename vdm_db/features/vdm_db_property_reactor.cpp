// Properties of a feature that variables drive.
#include "vdm_db/features/vdm_db_property_reactor.h"

#include <algorithm>
#include <cmath>

#include "platform/assoc/assoc_variable.h"
#include "platform/db/database.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_results.h"
#include "vdm_db/features/vdm_reactor_variables.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

VDM_DEFINE_DB_CLASS(VdmDbPropertyReactor, VdmDbFeatureReactor, L"VdmDbPropertyReactor",
                    L"VDMDBPROPERTYREACTOR", L"features reactor")

// ---- State

VdmDbPropertyReactorImpl::VdmDbPropertyReactorImpl() {
  m_properties.mapProperty(kVdmPropToVars, &variables);
}

bool VdmDbPropertyReactorImpl::isOf(const OdDbObjectId& variable) const {
  return std::any_of(variables.begin(), variables.end(),
                     [&variable](const auto& bound) { return bound.second.id == variable; });
}

OdDbObjectIdArray VdmDbPropertyReactorImpl::getVariables(const VdmDbFeatureReactor*) {
  OdDbObjectIdArray ids;
  for (const auto& [property, variable] : variables) {
    if (!ids.contains(variable.id)) ids.append(variable.id);
  }
  return ids;
}

OdResult VdmDbPropertyReactorImpl::subErase(VdmDbFeatureReactor* reactor) {
  if (reactor->isUndoing()) return eOk;
  bool deletes = false;
  m_properties.getProperty(kVdmDeleteOnErase, deletes);
  for (const OdDbObjectId& variable : getVariables(reactor)) {
    vdmDetachFromVariable(variable, {reactor->objectId(), reactor->ownerId()});
    if (deletes) vdmRemoveVariable(variable);
  }
  return eOk;
}

// ---- Bindings

namespace {

/// The number under the key in the feature's bag.
bool numberOf(const OdDbObject* carrier, const OdString& property, double& number) {
  const auto data = VdmDbFeatureData::cast(carrier);
  return !data.isNull() && data->getReadProperties().getProperty(property, number);
}

}  // namespace

OdResult VdmDbPropertyReactor::setProperty(OdDbObject* owner, const OdString& property,
                                           const OdString& variableName) {
  assertWriteEnabled();
  double number = 0;
  if (!numberOf(owner, property, number)) return eKeyNotFound;
  const OdDbObjectId id = vdmu::getAssocVariable(database()->getModelSpaceId(), variableName,
                                                 /*create=*/true, vdmu::getConstExpression(number));
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return eInvalidKey;
  const OdResult result = vdmu::setConstExpression(variable.get(), number);
  const OdDbObjectId before = getPropertyVariable(property);
  stateForWrite().variables[property] = {id, OdDb::kSoftPointerRef};
  for (const OdDbObjectId& reactor : {objectId(), owner->objectId()}) {
    if (!variable->hasPersistentReactor(reactor)) variable->addPersistentReactor(reactor);
  }
  if (before != id && !stateForRead().isOf(before)) {
    vdmDetachFromVariable(before, {objectId(), owner->objectId()});
  }
  return result;
}

OdStringArray VdmDbPropertyReactor::getProperties() const {
  OdStringArray names;
  for (const auto& [property, variable] : stateForRead().variables) names.append(property);
  return names;
}

OdDbObjectId VdmDbPropertyReactor::getPropertyVariable(const OdString& property) const {
  const auto& variables = stateForRead().variables;
  const auto bound = variables.find(property);
  return bound == variables.end() ? OdDbObjectId::kNull : bound->second.id;
}

// ---- Events

namespace {

/// Calls the feature; true when it left the number to the caller, who has stored it then.
bool passOn(VdmFeature& feature, const OdString& property, double number) {
  if (feature.onPropertyModified(property, number) != kVdmNotHandled) return false;
  const auto data = VdmDbFeatureData::cast(feature.getDbObject());
  return !data.isNull() && data->getWriteProperties().setProperty(property, number);
}

}  // namespace

void VdmDbPropertyReactor::modified(const OdDbObject* object) {
  if (isUndoing() || object->isUndoing()) return;
  const auto notifying = OdDbAssocVariable::cast(object);
  if (notifying.isNull()) return;
  const auto variables = stateForRead().variables;  // the feature may change the bindings
  const VdmFeaturePtr feature = ownerId().openAs<VdmFeature>(OdDb::kForWrite);
  if (feature.isNull() || variables.empty()) return;
  bool anyStored = false;
  for (const auto& [property, id] : variables) {
    const auto variable =
        id.id == object->objectId() ? notifying : id.id.openAs<OdDbAssocVariable>();
    double number = 0;
    if (variable.isNull() || !numberOf(feature->getDbObject(), property, number)) continue;
    const double value = vdmu::getValueAsDouble(variable.get());
    if (!vdmIsOtherNumber(value, number)) continue;
    anyStored = passOn(*feature, property, value) || anyStored;
  }
  if (!anyStored) return;
  const auto manager = feature->featureManagerId().openAs<VdmDbFeatureManager>(OdDb::kForWrite);
  if (!manager.isNull()) manager->updateFeaturesStatus(VdmFeature::StatusNotifyEntities);
}

void VdmDbPropertyReactor::erased(const OdDbObject* object, bool erasing) {
  if (!erasing || isUndoing() || object->isUndoing()) return;
  if (!stateForRead().isOf(object->objectId())) return;
  const VdmOpenUpgrade upgrade(this);
  std::erase_if(stateForWrite().variables,
                [object](const auto& bound) { return bound.second.id == object->objectId(); });
}
