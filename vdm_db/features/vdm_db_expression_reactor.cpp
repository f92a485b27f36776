// A property of a feature that an expression gives.
//
// A reaction runs while the reactor is open for notification: it is upgraded before anything is
// stored in it, since a write assertion raises otherwise, and what a reaction raises is only
// reported. A change that was seen is stored before the feature is called, so that a feature that
// sets the same expression again ends there.
#include "vdm_db/features/vdm_db_expression_reactor.h"

#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/expression_parser.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_results.h"
#include "vdm_db/features/vdm_reactor_variables.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

VDM_DEFINE_DB_CLASS(VdmDbExpressionReactor, VdmDbFeatureReactor, L"VdmDbExpressionReactor",
                    L"VDMDBEXPRESSIONREACTOR", L"features reactor")

// ---- State

VdmDbExpressionReactorImpl::VdmDbExpressionReactorImpl() {
  m_properties.mapProperty(kVdmVar, &variable, OdDb::kSoftPointerRef);
  m_properties.mapProperty(kVdmValue, &value);
  m_properties.mapProperty(kVdmStrType, &isString);
  m_properties.mapProperty(kVdmExpr, &expression);
  m_properties.mapProperty(kVdmProp, &property);
  m_properties.mapProperty(kVdmReact, &reacts);
}

OdDbObjectIdArray VdmDbExpressionReactorImpl::getVariables(const VdmDbFeatureReactor*) {
  return variable.isNull() ? OdDbObjectIdArray() : OdDbObjectIdArray{variable};
}

// The owner's erasing erases its reactors before it is reported to anybody, so that the clean-up
// belongs here.
OdResult VdmDbExpressionReactorImpl::subErase(VdmDbFeatureReactor* reactor) {
  if (reactor->isUndoing()) return eOk;
  vdmDetachFromVariable(variable, {reactor->objectId()});
  vdmRemoveVariable(variable);
  return eOk;
}

// ---- The property

void VdmDbExpressionReactor::setPropertyName(const OdString& property) {
  stateForWrite().property = property;
}
OdString VdmDbExpressionReactor::propertyName() const { return stateForRead().property; }
void VdmDbExpressionReactor::setInitialValue(double value) { stateForWrite().value = value; }
void VdmDbExpressionReactor::setStringType(bool isString) { stateForWrite().isString = isString; }
double VdmDbExpressionReactor::value() const { return stateForRead().value; }

// ---- The variable

OdDbObjectId VdmDbExpressionReactor::assocVariable() const { return stateForRead().variable; }

void VdmDbExpressionReactor::setDeleteOnErase(bool deletes) {
  VdmProperties& bag = stateForWrite().properties();
  bag.removeProperty(kVdmDeleteOnErase);
  if (deletes) bag.setProperty(kVdmDeleteOnErase, true);
}

OdDbObjectId VdmDbExpressionReactor::makeVariable() {
  const OdDbObjectId id = vdmu::addVariable(blockId());
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return OdDbObjectId::kNull;
  variable->setName(OdString().format(L"*%ls", id.getHandle().ascii().c_str()),
                    /*updateReferencingExpressions=*/false);
  return id;
}

OdResult VdmDbExpressionReactor::setExpression(const OdString& text, bool reacts,
                                               OdString* errorMessage) {
  VdmDbExpressionReactorImpl& own = stateForWrite();
  own.expression.empty();
  const bool isNew = own.variable.openAs<OdDbAssocVariable>().isNull();
  const OdDbObjectId id = isNew ? makeVariable() : own.variable;
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return kVdmNoFeature;
  const OdResult result =
      variable->setExpression(text, OdString::kEmpty, /*checkForCyclicalDependencies=*/true,
                              /*updateDependenciesOnOtherVariables=*/true, errorMessage);
  own.expression = variable->expression();
  own.variable = id;
  own.reacts = reacts;
  if (!variable->hasPersistentReactor(objectId())) variable->addPersistentReactor(objectId());
  return result;
}

OdString VdmDbExpressionReactor::expression() const {
  const auto variable = assocVariable().openAs<OdDbAssocVariable>();
  return variable.isNull() ? OdString() : variable->expression();
}

std::tuple<const OdDbEvalVariant*, OdString> VdmDbExpressionReactor::getLastState() const {
  const VdmDbExpressionReactorImpl& seen = stateForRead();
  return {seen.lastValue.get(), seen.lastExpression};
}

bool VdmDbExpressionReactor::findVariable(const OdString& name) const {
  const auto variable = assocVariable().openAs<OdDbAssocVariable>();
  if (variable.isNull()) return false;
  if (variable->name().iCompare(name) == 0) return true;
  OdExpression::Parser parser;
  return parser.setExpression(variable->expression()) == eOk && parser.usesName(name);
}

OdResult VdmDbExpressionReactor::renameVariable(const OdString& name) {
  const auto variable = assocVariable().openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return kVdmNoFeature;
  return variable->setName(name, /*updateReferencingExpressions=*/true);
}

// ---- Events

/// Stores what the variable has now; true when that is a change.
bool VdmDbExpressionReactor::takeState(const OdDbAssocVariable& variable) {
  VdmDbExpressionReactorImpl& seen = state();
  const OdDbEvalVariantPtr present = vdmu::getEvalVariant(&variable);
  const OdString expression = variable.expression();
  const double number = vdmu::getValueAsDouble(&variable);
  const bool isOtherValue =
      seen.isString ? seen.lastValue.isNull() || vdmu::getAsString(seen.lastValue.get()) !=
                                                     vdmu::getAsString(present.get())
                    : vdmIsOtherNumber(number, seen.value);
  const bool isOtherExpression = expression != seen.expression;
  seen.lastValue = present;
  seen.lastExpression = expression;
  if (!isOtherValue && !isOtherExpression) return false;
  const VdmOpenUpgrade upgrade(this);
  assertWriteEnabled();
  if (!seen.isString) seen.value = number;
  seen.expression = expression;
  return true;
}

void VdmDbExpressionReactor::modified(const OdDbObject* object) {
  if (object->objectId() != state().variable) return;
  if (isUndoing() || object->isUndoing()) {
    state().lastValue = nullptr;  // no longer what was seen last
    return;
  }
  const auto variable = OdDbAssocVariable::cast(object);
  if (variable.isNull() || !takeState(*variable)) return;
  const VdmDbExpressionReactorImpl& seen = stateForRead();
  if (!seen.reacts) return;
  const VdmFeaturePtr feature = ownerId().openAs<VdmFeature>(OdDb::kForWrite);
  if (!feature.isNull()) feature->onPropertyModified(seen.property, seen.value);
}

void VdmDbExpressionReactor::erased(const OdDbObject* object, bool erasing) {
  if (!erasing || isUndoing() || object->isUndoing()) return;
  const auto variable = OdDbAssocVariable::cast(object);
  bool deletes = false;
  stateForRead().properties().getProperty(kVdmDeleteOnErase, deletes);
  if (!deletes || variable.isNull() || object->objectId() != assocVariable() ||
      !variable->isAnonymous()) {
    return;
  }
  const VdmOpenUpgrade upgrade(this);
  {
    const VdmFeaturePtr feature = ownerId().openAs<VdmFeature>(OdDb::kForWrite);
    if (!feature.isNull()) feature->eraseReactor(objectId(), /*mask=*/0, /*tag=*/0);
  }
  if (!isErased()) erase();  // what is open for notification does not open for the feature
}
