// Constraint managers: the variables that carry the values of constraints.
//
// A parametric constraint with a name has a variable in the network of the block: the variable has
// the name and the expression, the constraint the last value. The variable reactor of the manager
// is a persistent reactor of each such variable, so that a new value reaches the constraint and the
// erasure of the variable removes it. A change that begins at the constraint stores the value
// first: what the reactor then reports makes no difference and ends there.
//
// To find the constraint of a variable the manager keeps an index of node ids. It is no truth of
// its own: an entry counts when the constraint of that node id names this very variable, and a miss
// builds it again.
#include <cmath>

#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/assoc/expression_parser.h"
#include "platform/base/case_compare.h"
#include "platform/base/error.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_constraint_names.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/constraints/vdm_db_variable_reactor.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/parameters/vdm_variable_values.h"

namespace {

constexpr double kSameValue = 1e-12;  // of a constraint and its variable

/// Somebody else depends on the variable.
bool hasOtherReactor(const OdDbAssocVariable* variable) {
  for (const OdDbObjectId& reactor : variable->getPersistentReactors()) {
    if (!reactor.isErased() && !vdmu::isIdOf<OdDbDictionary>(reactor)) return true;
  }
  return false;
}

}  // namespace

// ---- The variable of a constraint

OdDbObjectId VdmDbConstraintManager::ensureVariable(VdmConstraint* constraint) {
  const OdDbObjectId present = constraint->userVariable();
  if (!present.openAs<OdDbAssocVariable>().isNull()) return present;
  const OdDbObjectId made = constraint->createVariable();
  attachVariable(*constraint);
  return made;
}

void VdmDbConstraintManager::attachVariable(const VdmConstraint& constraint) {
  const OdDbObjectId id = constraint.userVariable();
  const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return;
  m_variableIndex[id] = constraint.nodeId();
  const OdDbObjectId reactor = variableReactor(/*create=*/true);
  if (!variable->hasPersistentReactor(reactor)) variable->addPersistentReactor(reactor);
}

OdDbObjectId VdmDbConstraintManager::variableReactor(bool create) {
  OdDbObjectId id;
  if (m_properties.getProperty(kVdmVariableReactorId, id) && !id.isErased()) return id;
  if (!create) return OdDbObjectId::kNull;
  assertWriteEnabled();
  id = database()->addOdDbObject(VdmDbVariableReactor::createObject(), objectId());
  m_properties.removeProperty(kVdmVariableReactorId);
  m_properties.setProperty(kVdmVariableReactorId, id, OdDb::kHardOwnershipRef);
  return id;
}

void VdmDbConstraintManager::removeVariable(const OdDbObjectId& id) {
  assertReadEnabled();
  {
    const auto variable = id.openAs<OdDbAssocVariable>(OdDb::kForWrite);
    if (variable.isNull()) return;
    variable->removePersistentReactor(variableReactor(/*create=*/false));
    if (hasOtherReactor(variable.get())) return;
  }
  vdmu::removeVariable(id);
}

OdDbObjectIdArray VdmDbConstraintManager::variables() const {
  assertReadEnabled();
  OdDbObjectIdArray ids;
  for (const auto& [nodeId, constraint] : m_constraints) {
    const OdDbObjectId id = constraint->userVariable();
    if (id.isNull()) continue;
    ids.append(id);
    const auto variable = id.openAs<OdDbAssocVariable>();
    if (!variable.isNull()) constraint->m_name = variable->name();
  }
  return ids;
}

VdmConstraint* VdmDbConstraintManager::getDimConstraint(const OdDbObjectId& variable) {
  if (variable.isNull()) return nullptr;
  const auto indexed = [&]() -> VdmConstraint* {
    const auto entry = m_variableIndex.find(variable);
    if (entry == m_variableIndex.end()) return nullptr;
    const auto held = m_constraints.find(entry->second);
    const bool isRight = held != m_constraints.end() && held->second->userVariable() == variable;
    return isRight ? held->second.get() : nullptr;
  };
  if (VdmConstraint* constraint = indexed()) return constraint;
  m_variableIndex.clear();
  for (const auto& [nodeId, constraint] : m_constraints) {
    const OdDbObjectId id = constraint->userVariable();
    if (!id.isNull()) m_variableIndex.emplace(id, nodeId);
  }
  return indexed();
}

// ---- Name, value and expression

OdResult VdmDbConstraintManager::setConstraintName(VdmConstraint* constraint, const OdString& name,
                                                   OdString* errorMessage) {
  assertWriteEnabled();
  if (constraint == nullptr) return eOk;
  ensureVariable(constraint);
  return constraint->setName(name, errorMessage);
}

OdResult VdmDbConstraintManager::setConstraintValue(VdmConstraint* constraint, double value,
                                                    OdString* errorMessage) {
  assertWriteEnabled();
  if (constraint == nullptr) return eOk;
  constraint->setUserValue(value);
  return setConstraintExpression(constraint, vdmu::getConstExpression(value), errorMessage);
}

OdResult VdmDbConstraintManager::setConstraintExpression(VdmConstraint* constraint,
                                                         const OdString& text,
                                                         OdString* errorMessage) {
  assertWriteEnabled();
  if (constraint == nullptr) return eOk;
  const auto variable = ensureVariable(constraint).openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return eOk;
  const OdResult result =
      variable->setExpression(text, OdString::kEmpty, /*checkForCyclicalDependencies=*/true,
                              /*updateDependenciesOnOtherVariables=*/true, errorMessage);
  return result;
}

VdmDbConstraintManager::ExpressionStatus VdmDbConstraintManager::checkConstraintExpression(
    const OdString& text) {
  OdExpression::Parser parser;
  if (parser.setExpression(text) != eOk) return kExpressionSyntaxError;
  OdStringArray used;
  parser.getVariables(used);
  std::set<OdString> known;
  if (!used.isEmpty()) {
    vdmu::getVariableNames(blockId(), known);
    vdmu::getConstraintNamesSet(this, known);
  }
  for (const OdString& name : used) {
    if (!known.contains(odToUpper(name))) return kExpressionUnknownName;
  }
  return kExpressionOk;
}

// ---- What the reactor reports

bool VdmDbConstraintManager::variableModified(const OdDbObjectId& variable, double value) {
  VdmConstraint* constraint = getDimConstraint(variable);
  if (constraint == nullptr) return false;
  const bool isOther = std::abs(value - constraint->userValue()) > kSameValue;
  if (isOther) constraint->setUserValue(value);
  return isOther;
}

void VdmDbConstraintManager::variableErased(const OdDbObjectId& variable) {
  VdmConstraint* constraint = getDimConstraint(variable);
  if (constraint == nullptr) return;
  assertWriteEnabled();
  removeConstraint(constraint);
}
