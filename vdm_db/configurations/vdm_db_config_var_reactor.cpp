// Links of columns of configurations to variables.
//
// A change of a variable reaches its link while the change is being announced: the link is open for
// notification, and every write needs an upgrade. What the link does itself comes back to it in the
// same way. Two things tell the one from the other. While it writes, a flag makes it deaf; the flag
// is cleared when the writing ends and not by the announcement, since a variable that is set to
// what it was announces nothing, and one that somebody else holds open announces later. And a
// value counts as changed only when it differs from the one that was last written or seen.
#include "vdm_db/configurations/vdm_db_config_var_reactor.h"

#include <algorithm>
#include <cmath>

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/base/case_compare.h"
#include "platform/base/non_copyable.h"
#include "vdm_db/common/vdm_class_registration.h"
#include "vdm_db/configurations/vdm_configuration_feature.h"
#include "vdm_db/configurations/vdm_configuration_results.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

VDM_DEFINE_DB_CLASS(VdmDbConfigVarReactor, VdmDbFeatureReactor, L"VdmDbConfigVarReactor",
                    L"VDMDBCONFIGVARREACTOR", L"features reactor")

namespace {

constexpr double kChange = 1e-10;  // a number changes by more than this
// What eraseReactor() of the feature is given.
constexpr int kKeyMask = 2;
constexpr int kColumnMask = 0;

bool isOtherUse(const OdDbObjectId& reactor, const OdDbObjectId& link) {
  return reactor != link && vdmu::assocVariableReactorIsValid(reactor.openObject().get());
}

}  // namespace

// ---- State

VdmDbConfigVarReactorImpl::VdmDbConfigVarReactorImpl() {
  m_properties.mapProperty(L"VarId", &variable, OdDb::kSoftPointerRef);
  m_properties.mapProperty<OdString>(L"VarName", &variableName);
  m_properties.mapProperty<bool>(L"DeleteVarOnErase", &deletesVariable);
  m_properties.mapProperty<double>(L"Value", &value);
  m_properties.mapProperty<OdString>(L"String", &text);
  m_properties.mapProperty<bool>(L"IsString", &isString);
  m_properties.mapProperty<bool>(L"IsKeyVar", &isKey);
  m_properties.mapProperty<bool>(L"IsEnabled", &isEnabled);
  m_properties.mapProperty<OdString>(L"Name", &column);
}

OdResult VdmDbConfigVarReactorImpl::subErase(VdmDbFeatureReactor* reactor) {
  const OdDbObjectId link = reactor->objectId();
  OdDbAssocVariablePtr linked = variable.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (reactor->isUndoing() || linked.isNull()) return eOk;
  if (!linked->OdDbObject::hasPersistentReactor(link)) return eOk;
  linked->removePersistentReactor(link);
  if (!deletesVariable) return eOk;
  const OdDbObjectIdArray reactors = linked->getPersistentReactors();
  const bool isUsed =
      !isString && std::any_of(reactors.begin(), reactors.end(),
                               [&](const OdDbObjectId& id) { return isOtherUse(id, link); });
  if (isUsed) return eOk;
  linked->removeAllDependencies(/*alsoErase=*/true);
  linked.release();
  vdmu::removeVariable(variable);
  return eOk;
}

OdDbObjectIdArray VdmDbConfigVarReactorImpl::getVariables(const VdmDbFeatureReactor* /*reactor*/) {
  return variable.isNull() ? OdDbObjectIdArray() : OdDbObjectIdArray{variable};
}

OdDbObjectIdArray VdmDbConfigVarReactorImpl::getDependentVariables(
    const VdmDbFeatureReactor* reactor) {
  return getVariables(reactor);
}

/// The link is deaf while this lives.
class VdmDbConfigVarReactor::Writing : OdNonCopyable {
 public:
  explicit Writing(const VdmDbConfigVarReactor& link)
      : m_link(&link), m_isWriting(link.state().isWriting) {
    m_before = std::exchange(m_isWriting, true);
  }
  ~Writing() { m_isWriting = m_before; }

 private:
  OdSmartPtr<const VdmDbConfigVarReactor> m_link;
  bool& m_isWriting;
  bool m_before = false;
};

// ---- The variable

OdDbAssocVariablePtr VdmDbConfigVarReactor::openVariable(OdDb::OpenMode mode) const {
  OdDbAssocVariablePtr variable = stateForRead().variable.openAs<OdDbAssocVariable>(mode);
  if (!variable.isNull() && !variable->OdDbObject::hasPersistentReactor(objectId())) {
    variable.release();
  }
  return variable;
}

void VdmDbConfigVarReactor::attach(OdDbAssocVariable& variable, bool isKey, bool isString,
                                   bool deletesVariable) {
  VdmDbConfigVarReactorImpl& state = stateForWrite();
  state.variable = variable.objectId();
  state.variableName = variable.name();
  state.deletesVariable = deletesVariable;
  state.value = variable.numericValue();
  state.isKey = isKey;
  state.isString = isString;
  state.isEnabled = true;  // until the variable announces an expression
  variable.addPersistentReactor(objectId());
}

OdResult VdmDbConfigVarReactor::attachToVariable(const OdDbObjectId& variable, bool isKey,
                                                 bool isString) {
  const Writing writing(*this);  // until the variable has closed, and announced its new reactor
  const OdDbAssocVariablePtr linked = variable.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (linked.isNull()) return kVdmNoVariable;
  attach(*linked, isKey, isString, /*deletesVariable=*/false);
  return eOk;
}

OdResult VdmDbConfigVarReactor::attachToVariable(OdDbObjectId block, OdDbObject* owner,
                                                 const OdString& name) {
  if (owner == nullptr || owner->objectId() != ownerId()) return kVdmNotFound;
  setName(name);
  return attachToVariable(vdmu::getAssocVariable(block, name, /*create=*/false, OdString()),
                          /*isKey=*/false, /*isString=*/false);
}

OdResult VdmDbConfigVarReactor::attachToNewVariable(OdDbObjectId block, OdDbObject* owner,
                                                    const OdString& name, bool isKey,
                                                    bool isString) {
  if (owner == nullptr || owner->objectId() != ownerId()) return kVdmNotFound;
  const OdDbObjectId id = vdmu::getAssocVariable(block, vdmu::generateVariableName(block, name),
                                                 /*create=*/true, OdString());
  const Writing writing(*this);
  const OdDbAssocVariablePtr variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return kVdmNoVariable;
  setName(name);
  const OdResult result = variable->setValue(OdDbEvalVariant::init(0.0));
  if (result == eOk) attach(*variable, isKey, isString, /*deletesVariable=*/true);
  return result;
}

OdDbObjectId VdmDbConfigVarReactor::variable() const {
  const OdDbAssocVariablePtr variable = openVariable(OdDb::kForRead);
  return variable.isNull() ? OdDbObjectId::kNull : variable->objectId();
}

OdString VdmDbConfigVarReactor::variableName() const { return stateForRead().variableName; }
OdString VdmDbConfigVarReactor::name() const { return stateForRead().column; }
void VdmDbConfigVarReactor::setName(const OdString& column) { stateForWrite().column = column; }
bool VdmDbConfigVarReactor::isKey() const { return stateForRead().isKey; }
bool VdmDbConfigVarReactor::isStringType() const { return stateForRead().isString; }
bool VdmDbConfigVarReactor::isEnabled() const { return stateForRead().isEnabled; }
OdString VdmDbConfigVarReactor::stringValue() const { return stateForRead().text; }

OdString VdmDbConfigVarReactor::takeVariableName() {
  const OdDbAssocVariablePtr variable = openVariable(OdDb::kForRead);
  if (variable.isNull() || variable->name() == stateForRead().variableName) {
    return stateForRead().variableName;
  }
  const VdmOpenUpgrade upgrade(this);
  return stateForWrite().variableName = variable->name();
}

void VdmDbConfigVarReactor::setIsEnabled(bool enabled) {
  VdmDbConfigVarReactorImpl& state = stateForWrite();
  state.isEnabled = enabled;
  const Writing writing(*this);
  const OdDbAssocVariablePtr variable = openVariable(OdDb::kForWrite);
  if (variable.isNull()) return;
  const OdString expression = enabled ? OdString() : vdmu::getConstExpression(state.value);
  if (variable->expression().isEmpty() == expression.isEmpty()) return;
  variable->setExpression(expression);
}

// ---- Values

OdResult VdmDbConfigVarReactor::getVariableValue(OdString& text, double& number) const {
  const OdDbAssocVariablePtr variable = openVariable(OdDb::kForRead);
  if (variable.isNull()) return kVdmNoVariable;
  number = vdmu::getValueAsDouble(variable.get());
  text.empty();
  if (!isStringType()) return eOk;
  if (isEnabled() ||
      VdmConfigurationFeature::evaluateStringValue(variable->objectId(), text) != eOk) {
    text = stringValue();
  }
  return eOk;
}

OdResult VdmDbConfigVarReactor::setVariableValue(const OdString& text) {
  if (!stateForRead().isString) return kVdmNotFound;
  VdmDbConfigVarReactorImpl& state = stateForWrite();
  state.text = text;
  return setVariableValue(state.value < 0.5 ? 1.0 : 0.0);
}

// The state is complete before the variable closes, which is when others hear of the change.
OdResult VdmDbConfigVarReactor::setVariableValue(double number) {
  VdmDbConfigVarReactorImpl& state = stateForWrite();
  const Writing writing(*this);
  const OdDbAssocVariablePtr variable = openVariable(OdDb::kForWrite);
  if (variable.isNull()) return kVdmNoVariable;
  state.isEnabled = true;
  state.value = number;
  const OdResult result = variable->setExpression(OdString());
  return result == eOk ? variable->setValue(OdDbEvalVariant::init(number)) : result;
}

VdmDbConfigVarReactorPtr VdmDbConfigVarReactor::of(const OdDbAssocVariable* variable,
                                                   OdDb::OpenMode mode) {
  if (variable == nullptr) return {};
  // Without the dependencies of other variables, which may be many.
  const OdDbObjectIdArray reactors = variable->OdDbObject::getPersistentReactors();
  for (const OdDbObjectId& id : reactors) {
    if (!id.objectClass()->isDerivedFrom(desc())) continue;
    VdmDbConfigVarReactorPtr link = id.openAs<VdmDbConfigVarReactor>(mode);
    if (!link.isNull()) return link;
  }
  return {};
}

// ---- What the variable announces

bool VdmDbConfigVarReactor::takeChange(const OdDbAssocVariable& variable) {
  const VdmDbConfigVarReactorImpl& state = stateForRead();
  const bool isEnabled = variable.expression().isEmpty();
  const double number = vdmu::getValueAsDouble(&variable);
  OdString text = state.text;
  bool isChanged = false;
  if (state.isString) {
    const OdResult result = VdmConfigurationFeature::evaluateStringValue(variable.objectId(), text);
    isChanged = result == eOk && odStrICmp(text, state.text) != 0;
  } else {
    if (variable.value().isNull()) return false;
    isChanged = std::abs(number - state.value) > kChange;
  }
  if (isChanged || isEnabled != state.isEnabled) {
    VdmDbConfigVarReactorImpl& changed = stateForWrite();
    changed.isEnabled = isEnabled;
    if (isChanged && state.isString) changed.text = text;
    if (isChanged && !state.isString) changed.value = number;
  }
  return isChanged;
}

void VdmDbConfigVarReactor::modified(const OdDbObject* object) {
  const VdmDbConfigVarReactorImpl& state = stateForRead();
  if (isUndoing() || state.isWriting) return;
  if (object->objectId() != state.variable || object->isErased()) return;
  const OdDbAssocVariablePtr variable = OdDbAssocVariable::cast(object);
  if (variable.isNull()) return;
  const VdmOpenUpgrade upgrade(this);
  const bool isChanged = takeChange(*variable);
  if (!isChanged && variable->name() == state.variableName) return;
  const VdmConfigurationFeaturePtr feature =
      ownerId().openAs<VdmConfigurationFeature>(OdDb::kForWrite);
  if (feature.isNull()) return;
  // A new name is a change like a new value.
  feature->followRename(*this);
  feature->onPropertyModified(state.column, state.value);
}

void VdmDbConfigVarReactor::erased(const OdDbObject* object, bool erasing) {
  const VdmDbConfigVarReactorImpl& state = stateForRead();
  if (!erasing || object->isUndoing() || object->objectId() != state.variable) return;
  const VdmOpenUpgrade upgrade(this);
  leaveFeature();
  if (!isErased()) erase();  // what is open for notification does not open for the feature
}

void VdmDbConfigVarReactor::leaveFeature() {
  const VdmFeaturePtr feature = ownerId().openAs<VdmFeature>(OdDb::kForWrite);
  const int mask = stateForRead().isKey ? kKeyMask : kColumnMask;
  if (!feature.isNull()) feature->eraseReactor(objectId(), mask, /*tag=*/0);
}

// The feature erases what it takes out of its list; a link that ends already refuses that.
OdResult VdmDbConfigVarReactor::subErase(bool erasing) {
  if (m_isEnding) return eWasErased;
  const OdResult result = VdmDbFeatureReactor::subErase(erasing);
  if (result != eOk || !erasing || isUndoing()) return result;
  m_isEnding = true;
  leaveFeature();
  m_isEnding = false;
  return result;
}

bool VdmDbConfigVarReactor::doAudit() { return !variable().isNull(); }
