// The mechanical attributes of a parameter.
#include "vdm_db/parameters/vdm_assoc_variable_ext.h"

#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_roles.h"

OD_RX_DEFINE(VdmAssocVariableExt, OdRxObject, L"VdmAssocVariableExt")

VdmAssocVariableExt::VdmAssocVariableExt() = default;
VdmAssocVariableExt::~VdmAssocVariableExt() = default;

VdmAssocVariableExtPtr VdmAssocVariableExt::cast(const OdDbAssocVariable* variable) {
  // Whether it may be written is up to how it is open.
  return cast(OdDbAssocVariablePtr(const_cast<OdDbAssocVariable*>(variable)));
}

VdmAssocVariableExtPtr VdmAssocVariableExt::cast(const OdDbAssocVariablePtr& variable) {
  if (variable.isNull()) return {};
  const VdmAssocVariableExtPtr wrapper = createObject();
  wrapper->m_variable = variable;
  return wrapper;
}

// ---- The bag

namespace {

template <class T>
T valueOr(const VdmProperties& bag, const OdString& key, T value) {
  bag.getProperty(key, value);
  return value;
}

}  // namespace

const VdmProperties& VdmAssocVariableExt::bag() const {
  if (m_bag == nullptr) {
    m_bag = std::make_unique<VdmProperties>();
    if (!m_variable.isNull()) m_bag->readFromDbObject(m_variable.get());
  }
  return *m_bag;
}

void VdmAssocVariableExt::write() {
  if (!m_variable.isNull()) m_bag->writeToDbObject(m_variable.get());
}

template <class T>
void VdmAssocVariableExt::store(const OdString& key, const T& value) {
  static_cast<void>(bag());
  m_bag->removeProperty(key);  // may be of another type
  m_bag->setProperty(key, value);
}

// ---- Exposure to users

bool VdmAssocVariableExt::isOverriddenExpose() const {
  bool exposed = false;
  return bag().getProperty(kVdmExpose, exposed);
}

bool VdmAssocVariableExt::isExposed() const { return valueOr(bag(), kVdmExpose, false); }

void VdmAssocVariableExt::setExposed(bool exposed) {
  store(kVdmExpose, exposed);
  write();
}

void VdmAssocVariableExt::setDefaultExpose() {
  static_cast<void>(bag());
  m_bag->removeProperty(kVdmExpose);
  write();
}

namespace {

struct Uses {
  bool isUsed = false;
  bool isConfigured = false;
};

Uses usesOf(const OdDbAssocVariable* variable) {
  Uses uses;
  for (const OdDbObjectId& id : variable->getPersistentReactors()) {
    const OdDbObjectPtr reactor = id.openObject();
    if (reactor.isNull()) continue;
    uses.isUsed = uses.isUsed || vdmu::assocVariableReactorIsValid(reactor.get());
    uses.isConfigured = uses.isConfigured ||
                        vdmAskRole(VdmVariableRoles::installed().isDrivingColumn, reactor.get());
  }
  return uses;
}

bool dependsOnNothing(const OdDbAssocVariable* variable) {
  OdDbObjectIdArray dependencies;
  variable->getDependencies(/*readDependencies=*/true, /*writeDependencies=*/true, dependencies);
  return dependencies.isEmpty();
}

}  // namespace

bool VdmAssocVariableExt::calculateExposedStatus(const OdDbAssocVariable* variable) {
  if (variable == nullptr || variable->isAnonymous()) return false;
  const VdmAssocVariableExtPtr wrapper = cast(variable);
  if (wrapper->isOverriddenExpose()) return wrapper->isExposed();
  const Uses uses = usesOf(variable);
  return uses.isUsed && !wrapper->isGeometryDriven() && !uses.isConfigured &&
         dependsOnNothing(variable);
}

// ---- Other attributes

VdmAssocVariableExt::EBOMStatus VdmAssocVariableExt::statusBOM() const {
  return static_cast<EBOMStatus>(valueOr(bag(), kVdmBomStatus, OdLong{kBOMNotSpecified}));
}

void VdmAssocVariableExt::setStatusBOM(EBOMStatus status) {
  store(kVdmBomStatus, OdLong{status});
  write();
}

bool VdmAssocVariableExt::hasRangeForAnimation(double& start, double& end) const {
  double first = 0;
  if (!bag().getProperty(kVdmStartAnimationValue, first)) return false;
  if (!bag().getProperty(kVdmEndAnimationValue, end)) return false;
  start = first;
  return true;
}

void VdmAssocVariableExt::setRangeForAnimation(double start, double end) {
  store(kVdmStartAnimationValue, start);
  store(kVdmEndAnimationValue, end);
  write();
}

void VdmAssocVariableExt::clearRangeForAnimation() {
  static_cast<void>(bag());
  m_bag->removeProperty(kVdmStartAnimationValue);
  m_bag->removeProperty(kVdmEndAnimationValue);
  write();
}

bool VdmAssocVariableExt::isGeometryDriven() const {
  return valueOr(bag(), kVdmGeometryDriven, false);
}

void VdmAssocVariableExt::setGeometryDriven(bool driven) {
  store(kVdmGeometryDriven, driven);
  write();
}

// ---- What the variable is for

/// A length whatever measurement type is stored.
bool VdmAssocVariableExt::isDimension() const {
  const OdDbAssocVariable* variable = m_variable.get();
  return variable != nullptr &&
         (vdmAskRole(VdmVariableRoles::installed().isLinearConstraint, variable) ||
          isSMThickness());
}

bool VdmAssocVariableExt::isLinearDimension() const {
  return measurementType() == kLength || isDimension();
}

bool VdmAssocVariableExt::isAngularDimension() const {
  return !m_variable.isNull() &&
         vdmAskRole(VdmVariableRoles::installed().isAngularConstraint, m_variable.get());
}

bool VdmAssocVariableExt::isSMThickness() const {
  return !m_variable.isNull() &&
         vdmAskRole(VdmVariableRoles::installed().isSheetMetalThickness, m_variable.get());
}

bool VdmAssocVariableExt::isSuppressVariable() const {
  return !m_variable.isNull() && m_variable->objectId().isValid() &&
         vdmAskRole(VdmVariableRoles::installed().isSuppression, m_variable.get());
}

int VdmAssocVariableExt::measurementType() const {
  return valueOr(bag(), kVdmUnits, OdLong{kNumber});
}

void VdmAssocVariableExt::setMeasurementType(int type) {
  static_cast<void>(bag());
  m_bag->removeProperty(kVdmUnits);
  if (type != kNumber && !isLinearDimension()) m_bag->setProperty(kVdmUnits, OdLong{type});
  write();
}
