// Variables of a block: names, look-up, creation, uses.
#include "vdm_db/parameters/vdm_variable_names.h"

#include "platform/assoc/assoc_dependency.h"
#include "platform/assoc/assoc_network.h"
#include "platform/assoc/assoc_variable.h"
#include "platform/base/case_compare.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/dictionary.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/drawing_utils/vdm_xref_utils.h"

namespace vdmu {

namespace {

OdDbAssocNetworkPtr networkOf(const OdDbObjectId& block, bool create) {
  return OdDbAssocNetwork::getInstanceFromObject(block, create).openAs<OdDbAssocNetwork>();
}

/// Networks look up names that expressions can use, and no others.
OdDbObjectId findVariable(const OdDbAssocNetworkPtr& network, const OdString& name) {
  if (network.isNull()) return OdDbObjectId::kNull;
  if (!isAnonymous(name)) return network->variableNamed(name);
  for (const OdDbObjectId& action : network->getActions()) {
    const auto variable = action.openAs<OdDbAssocVariable>();
    if (!variable.isNull() && variable->name().iCompare(name) == 0) return action;
  }
  return OdDbObjectId::kNull;
}

OdString numberedName(const OdDbAssocNetworkPtr& network, const OdString& base) {
  for (int number = 1;; ++number) {
    const OdString name = OdString().format(L"%ls_%d", base.c_str(), number);
    if (findVariable(network, name).isNull()) return name;
  }
}

}  // namespace

// ---- Names

bool isAnonymous(const OdString& name) { return name.isEmpty() || name[0] == L'*'; }

void getVariableNames(OdDbObjectId block, std::set<OdString>& names) {
  const OdDbAssocNetworkPtr network = networkOf(block, /*create=*/false);
  if (network.isNull()) return;
  for (const OdDbObjectId& action : network->getActions()) {
    const auto variable = action.openAs<OdDbAssocVariable>();
    if (!variable.isNull()) names.insert(odToUpper(variable->name()));
  }
}

OdString generateVariableName(OdDbObjectId block, const OdString& base) {
  const OdDbAssocNetworkPtr network = networkOf(block, /*create=*/false);
  return findVariable(network, base).isNull() ? base : numberedName(network, base);
}

OdString generateVariableNameStartingWith(OdDbObjectId block, const OdString& base) {
  return numberedName(networkOf(block, /*create=*/false), base);
}

// ---- Variables

OdDbObjectId getAssocVariable(OdDbObjectId block, const OdString& name, bool create,
                              const OdString& expression) {
  const OdDbObjectId shown = getXrefBlock(block);
  const OdDbObjectId present = findVariable(networkOf(shown, /*create=*/false), name);
  if (!present.isNull() || !create) return present;
  const OdDbObjectId made = addVariable(shown);
  const auto variable = made.openAs<OdDbAssocVariable>(OdDb::kForWrite);
  if (variable.isNull()) return OdDbObjectId::kNull;
  variable->setName(name, /*updateReferencingExpressions=*/false);
  variable->setExpression(expression, OdString::kEmpty, /*checkForCyclicalDependencies=*/false,
                          /*updateDependenciesOnOtherVariables=*/false);
  return made;
}

OdDbObjectId addVariable(OdDbObjectId block) {
  const OdDbAssocNetworkPtr network = networkOf(block, /*create=*/true);
  if (network.isNull()) return OdDbObjectId::kNull;
  const OdDbAssocVariablePtr variable = OdDbAssocVariable::createObject();
  const OdDbObjectId id = network->database()->addOdDbObject(variable, network->objectId());
  const VdmOpenUpgrade upgrade(network);
  network->addAction(id, /*setThisNetworkAsOwner=*/true);
  return id;
}

void removeVariable(OdDbObjectId id) {
  OdDbObjectId network;
  if (const auto variable = id.openAs<OdDbAssocVariable>(); !variable.isNull()) {
    network = variable->owningNetwork();
  }
  const auto owner = network.openAs<OdDbAssocNetwork>(OdDb::kForWrite);
  if (!owner.isNull()) owner->removeAction(id, /*alsoErase=*/true);
}

// ---- Uses

namespace {

/// The object is below a block, and nothing on the way is erased.
bool isBelowBlock(const OdDbObject* object) {
  for (OdDbObjectId id = object->objectId(); !id.isErased(); id = id.ownerId()) {
    if (isIdOf<OdDbBlockTableRecord>(id)) return true;
  }
  return false;
}

}  // namespace

bool assocVariableReactorIsValid(const OdDbObject* reactor) {
  if (reactor == nullptr || reactor->isKindOf(OdDbDictionary::desc())) return false;
  if (reactor->isKindOf(OdDbAssocValueDependency::desc())) {
    return !reactor->ownerId().isErased() && isIdOf<OdDbAssocAction>(reactor->ownerId());
  }
  return isBelowBlock(reactor);
}

}  // namespace vdmu
